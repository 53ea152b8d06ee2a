// clock.h: time and chance. Back ends: posix/ (monotonic clock, system entropy); scripted/ (a clock that only
// the script's `tick` moves).
#pragma once

#include <cstddef>
#include <cstdint>

namespace hexlane::platform {

// Milliseconds since some fixed moment; wraps after 49 days. Any thread.
uint32_t tick_ms();

// The time of day where the program runs, "2026-03-01 14:05:09", into text[size]; empty when it cannot be
// told. A scripted run begins at the start of the year 2000.
void time_of_day(char* text, std::size_t size);

// Bytes that nobody can guess, from the system. Also in scripted runs.
void random_bytes(void* buffer, std::size_t size);

}  // namespace hexlane::platform
