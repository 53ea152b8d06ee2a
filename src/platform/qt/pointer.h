// pointer.h: the hourglass around modal views. Main thread only.
#pragma once

namespace hexlane::platform {

// A box that comes up during a long run shows the usual pointer; behind it the hourglass comes back. Called
// in pairs; both do nothing without an hourglass.
void suspend_wait_pointer();
void resume_wait_pointer();

}  // namespace hexlane::platform
