// queue.h: the queue behind the console's messages, for the files of this folder.
#pragma once

namespace hexlane::platform {

// Wakes the main thread out of its wait. Any thread, and signal handlers.
void wake_console();

// Signals that have come since the last call are posted. Main thread.
void post_waiting_signals();

}  // namespace hexlane::platform
