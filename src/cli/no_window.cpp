// no_window.cpp: what the core's boxes and rows ask of the main window, in a program that has none. These
// stand in the place of the frame's own, which would bring the whole window with them.

#include "platform/surface.h"
#include "shell/window.h"

namespace hexlane {

void set_caret_visible(bool) {}

namespace platform {

void set_scroll_range(WindowHandle, int, int) {}
void set_scroll_position(WindowHandle, int) {}

}  // namespace platform
}  // namespace hexlane
