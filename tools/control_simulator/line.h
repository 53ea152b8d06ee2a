// line.h: the line that the machine hangs on: a pty whose other side this program keeps open, or a serial
// device. Non-blocking; what waits for it is in session.cpp. Failures answer with a sentence, empty for none.
#pragma once

#include "options.h"

#include <string>

namespace simulator {

struct Line {
    int fd = -1;          // read and written here
    int other_side = -1;  // of a pty: held open, so that the station may open and close it
    int watch = -1;       // inotify: openings and closings of the other side; -1 on a device
    int openings = 0;     // of the other side by others that are open now
    std::string name;     // the device, or what the station opens
    std::string link;     // link to `name` that was made; empty for none
};

std::string open_line(const Options& options, Line* line);

// Hangs up, takes the link away and puts a device's settings back.
void close_line(Line* line);

// Reads what the watch has to tell into `openings`. Gives whether the other side was opened meanwhile.
bool read_watch(Line* line);

// Sets a terminal to raw bytes with the options' form. Gives the reason of a failure, empty for none. Made
// for both sides of a pty too, where rate and form mean nothing.
std::string set_raw(int fd, const Options& options);
void restore_settings(int fd);

}  // namespace simulator
