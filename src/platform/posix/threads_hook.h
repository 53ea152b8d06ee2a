// threads_hook.h: what a thread_join on the main thread runs while it waits.
#pragma once

namespace hexlane::platform {

// Runs every message that workers have sent (send_message) and that waits for the main thread now, then
// returns at once; posted messages and timers stay in the queue. Set once by the desktop's back end, before
// the first worker starts. A join on the main thread calls it again and again, a few hundred times a second,
// until the worker has ended, never with a lock held; so a worker that is just sending one comes to its end.
// nullptr: nothing is served.
inline void (*serve_sent_messages)() = nullptr;

}  // namespace hexlane::platform
