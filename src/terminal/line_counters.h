// line_counters.h: the terminal's row of counters as a text.
#pragma once

#include "platform/serial.h"

#include <cstdint>
#include <string>

namespace hexlane {

struct LineCounters {
    int64_t received;  // bytes
    int64_t sent;      // bytes that have left
    int64_t waiting;   // bytes still to go out
    bool held;         // by the machine
    bool open;
    bool counts_errors;  // the driver does
    platform::LineErrors errors;
};

// "received: 12   sent: 4, 3 held by the machine   errors: 1 parity, 0 framing, 0 overrun"
std::string counters_text(const LineCounters& counters);

}  // namespace hexlane
