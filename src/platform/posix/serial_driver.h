// serial_driver.h: what a running write asks of a tty driver, and its error counters. A table, so that a test
// can stand in for a driver that tells its queue, its shift register and its errors and has modem lines, none
// of which a pty has.
#pragma once

#include "platform/serial.h"

#include <cstddef>
#include <sys/types.h>

namespace hexlane::platform {

struct LineDriver {
    ssize_t (*write)(int tty, const void* data, std::size_t count);  // as write(2), without waiting
    int (*queued)(int tty);  // bytes accepted and not yet sent; 0 also when the driver doesn't tell
    int (*transmitter_empty)(int tty);  // 1 or 0; behind an empty queue
    int (*clear_to_send)(int tty);      // 1 or 0; -1 when there are no modem lines
    int (*error_counts)(int tty,
                        LineErrors* errors);  // since the driver's start; 1, or 0 when it counts none
};

extern const LineDriver TTY_DRIVER;

// What line_open gives to a new line: TTY_DRIVER, unless a test has put its own here before.
extern LineDriver line_driver;

}  // namespace hexlane::platform
