// script_clock.h: the clock that only a script or a test moves, and what falls due on it: timers of windows,
// and events of serial lines (line_model.h). What falls due at one time goes in the order in which the timers
// were made and the lines opened. Main thread only, but for reading the clock.
#pragma once

#include "platform/messages.h"

#include <cstdint>
#include <functional>

namespace hexlane::platform {

constexpr int64_t NS_PER_US = 1000;
constexpr int64_t NS_PER_MS = 1000000;
constexpr int64_t NEVER = INT64_MAX;

// Nanoseconds since the program's start.
int64_t clock_ns();

// Something that falls due: when, and its place among others of the same time, the lowest first.
struct Due {
    int64_t time_ns = NEVER;
    int creation = 0;
};
constexpr bool is_before(const Due& left, const Due& right) {
    return left.time_ns < right.time_ns || (left.time_ns == right.time_ns && left.creation < right.creation);
}
int next_creation_number();

// Moves the clock on by `ns`, sends WM_TIMER for what falls due and runs the events of lines. Stops early
// when `stop` says so behind one of them; `elapsed_ms` takes the whole milliseconds gone so far, all along.
void move_clock(int64_t ns, int64_t* elapsed_ms, const std::function<bool()>& stop);

// Period of a timer in ms, 0 when it is not running.
int timer_period_of(WindowHandle window, int id);

// A window is gone: its timers go with it.
void forget_timers(WindowHandle window);

// The clock at its start, without timers.
void wipe_clock();

}  // namespace hexlane::platform
