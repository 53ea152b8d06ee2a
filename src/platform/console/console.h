// console.h: desktop services for programs without a window: one message queue, timers, and boxes on standard
// error. It serves desktop.h's messages and timers and message_box, and an empty surface for what the
// program's own logic draws beside its work; views are not here, and a program that calls one does not link.
// A "window" is only a procedure that takes messages.
//
// start_console comes first, on the main thread; workers may post and send from then on.
#pragma once

#include "platform/messages.h"

namespace hexlane::platform {

// Makes the queue, and lets thread_join serve what workers send meanwhile.
void start_console();

// A handle for posting and sending; the messages reach `procedure` on the main thread.
WindowHandle make_console_window(WindowProcedure procedure);

// SIGINT and SIGTERM post `message` to `window`, with the signal's number in `first`. Each only once: the
// next one of its kind ends the process, so that a person is never locked in.
void post_signals(WindowHandle window, uint32_t message);

// Whether standard error, where boxes appear, is a terminal.
bool console_is_terminal();

// Runs before each box: a program with a line that it writes over and over ends it here. nullptr for nothing.
inline void (*before_box)() = nullptr;

}  // namespace hexlane::platform
