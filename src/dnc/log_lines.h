// log_lines.h: what the log's writing (transfer_log.cpp) and the search for receives that nothing
// has ended (cut_receives.cpp) share.
#pragma once

#include <cstddef>

namespace hexlane {

constexpr std::size_t LOG_LINE_SIZE = 2048;  // with its line end and a NUL

// "receive begun 2026-03-02 08:15:00; file /home/anna/part.nc", and any line that ends it:
// "received /home/anna/part.nc; ...".
constexpr const char* RECEIVE_BEGUN = "receive begun ";
constexpr const char* FILE_OF_BEGUN = "; file ";
constexpr const char* RECEIVE_ENDED = "received ";

// The full name of a log into path[PATH_SIZE]. 1, or 0 when it is too long.
int name_log(const char* title, char* path);

// Puts the text behind what the log holds, as one line, flushed. A failure is told, once a run.
void write_log_line(char line[LOG_LINE_SIZE]);

// Whether a receive of this run, begun and not ended, writes the file, named as the log has it.
bool is_in_open_entry(const char* file);

}  // namespace hexlane
