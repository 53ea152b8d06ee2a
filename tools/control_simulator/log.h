// log.h: the record of a conversation for people: time, direction, and the bytes as characters, with the
// names of control characters in <angle brackets>.
#pragma once

#include "codes.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace simulator {

int64_t now_ns();  // of the system's monotonic clock

struct Log {
    FILE* file = nullptr;  // nullptr: nothing is recorded
    Code code = Code::ASCII;
    int64_t start_ns = 0;
};

// Opens `path` ("-": standard error; empty: no log). Gives the reason of a failure, empty for none.
std::string open_log(const std::string& path, Code code, Log* log);

// Gives false when something of the log could not be written.
bool close_log(Log* log);

// `direction` is "in" or "out", seen from the machine.
void log_bytes(const Log& log, const char* direction, const void* bytes, std::size_t count);

// What happened besides: "opened", "XOFF is over".
void log_note(const Log& log, const std::string& note);

}  // namespace simulator
