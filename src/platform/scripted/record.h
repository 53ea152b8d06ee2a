// record.h: the record of a run: what happens on the desktop, one line each, in order. A script prints it; a
// unit test keeps it. Also how texts and paths are written in it. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace hexlane::platform {

// Adds one line. Before the call of print_record lines are kept for shown_lines of test_hooks.h.
void record_line(const std::string& line);
void print_record();
bool record_is_printed();

// The lines that `act` adds; they stay out of the record.
std::vector<std::string> record_aside(const std::function<void()>& act);
std::vector<std::string>& kept_lines();

// Bytes outside 0x20 to 0x7E as \xHH, the rest as it is: for text that is written in the form of the record
// already.
std::string printable(std::string_view text);

// The same, and a backslash as \\.
std::string escaped(std::string_view text);

// The same between quotes, with a quote as \" and places of the run by their names (see name_place).
std::string quoted(std::string_view text);

// A place of the run: `path` prints as `name` from now on, where it is whole path parts, and scripts may
// write it so. The longest path wins.
void name_place(const char* name, const std::string& path);
std::string with_place_names(std::string_view text);

// A path as a script writes it: a place's name at its front becomes the place's path.
std::string without_place_name(const std::string& path);

// Where the run's random prefix comes from; it prints as $PREFIX at the front of a file name.
void set_prefix_source(const char* (*prefix)());

// A call or a line that cannot be served: the run ends at once with this reason. Set by the script; a unit
// test ends with the reason.
[[noreturn]] void stop_run(const std::string& reason);
void set_stop_handler(void (*handler)(const std::string& reason));

}  // namespace hexlane::platform
