// message_queue.h: the one queue of posted messages, the timers, and the clock that only a script or a test
// moves. Order: before a line of the script and before a timer, everything posted has been served; timers
// that fall due at one time go in the order in which they were made. Main thread only.
#pragma once

#include "platform/messages.h"

#include <cstdint>

namespace hexlane::platform {

// Serves posted messages, and those that they post, until none is left. More than MESSAGE_FLOOD in one go
// stop the run: the program would never come to rest.
void serve_messages();
bool messages_are_waiting();
constexpr int MESSAGE_FLOOD = 1000000;

// Moves the clock on by `ms` and sends WM_TIMER for what falls due. Stops early when `stop` says so behind a
// timer; `elapsed` takes the milliseconds gone so far, all along.
void move_clock(int64_t ms, int64_t* elapsed, bool (*stop)());

// Milliseconds since the program's start on the scripted clock.
int64_t clock_ms();

// Period of a timer in ms, 0 when it is not running.
int timer_period_of(WindowHandle window, int id);

// A window is gone: its messages and timers go with it.
void forget_window(WindowHandle window);

// post_quit has been called; `code` takes its code.
bool quit_asked(int* code);

void wipe_messages();

}  // namespace hexlane::platform
