// surface.cpp: what the program's own logic asks of a window's surface, menus and carets, on a console, which
// has none.

#include "platform/surface.h"
#include "platform/desktop.h"

namespace hexlane::platform {

void show_caret(WindowHandle) {}
void hide_caret(WindowHandle) {}
void place_caret(WindowHandle, int, int) {}
void draw_text(WindowHandle, int, int, const char*, int, Color, Color) {}
void set_scroll_range(WindowHandle, int, int) {}
void set_scroll_position(WindowHandle, int) {}

PointerShape set_pointer_shape(PointerShape) {
    return PointerShape::ARROW;
}

}  // namespace hexlane::platform
