// main_window.h: the one window procedure of the program. Main thread only.
#pragma once

#include "platform/messages.h"

namespace hexlane {

int64_t main_window_proc(platform::WindowHandle window, uint32_t message, int64_t first, int64_t second);

}  // namespace hexlane
