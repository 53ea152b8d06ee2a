// dispatch.h: the handles of windows and views, and the road of every message to its procedure.
// Messages from workers, posted ones and timers all come in by Qt's event queue, so they go on under modal
// views. Main thread only, but for what desktop.h allows to workers.
#pragma once

#include "platform/messages.h"

namespace hexlane::platform {

// Makes the receiver of queued messages. Once, before the first window and before any worker.
void make_dispatcher();

// A new handle whose messages go to `procedure`, or nowhere with nullptr. Handles are never used twice.
WindowHandle add_window(WindowProcedure procedure);

// Ends a handle: its timers stop, and what still waits for it is dropped.
void remove_window(WindowHandle window);

// Runs the procedure at once and gives its result; 0 when the handle is gone.
int64_t call_window(WindowHandle window, uint32_t message, int64_t first, int64_t second);

}  // namespace hexlane::platform
