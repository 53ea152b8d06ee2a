// transfer_log.h: how a transfer of the screens goes, beyond what the engine counts: when it began and how
// long the machine held the line. At its end a receipt goes into transfers.log in the launch directory, one
// line each, and a line for each port that could not be opened; a log that has grown to LOG_LIMIT becomes
// transfers.old, in the place of the one before. Main thread only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace hexlane {

constexpr int64_t LOG_LIMIT = 256 * 1024;  // bytes

// A send has been prepared on the slot; or a receive is about to make its file: then a line with its name is
// written at once and flushed, since the program may end before the receive does.
void begin_log_entry(int slot, bool sending);

// The receive that was begun could not make its file: platform::last_file_error() tells why.
void drop_log_entry(int slot);

// Looks whether the machine holds the slot's line. Call every second or more often while transfers run.
void watch_line(int slot);

// The slot's port is being closed: writes the receipt of the transfer that was begun, if there is one. The
// line is still open, its worker has stopped.
void end_log_entry(int slot);

// The slot's port could not be opened: a line with the reason, as platform::line_problem_text tells it.
void log_failed_open(int slot);

// Writes a line of its own into the log: what the user should find there later, and when it was.
void note_in_log(const char* text);

// Why a line could not be written, once a run, for whoever tells it; nullptr when there is nothing to tell.
const char* take_log_failure();

// Text of the row's tooltip: device, rate asked and set, bytes, blocks, answers, time held.
void format_row_tip(int slot, char* text, std::size_t size);

}  // namespace hexlane
