#include "shell/window.h"

#include <algorithm>

#include "platform/surface.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

namespace {

bool caret_shown = false;  // what set_caret_visible did last

constexpr char BLANKS[] = "                                                                                "
                          "                                                                                ";

}  // namespace

void set_caret_visible(bool visible) {
    visible = visible && !child[0].block_active;
    if (visible == caret_shown)
        return;
    caret_shown = visible;
    if (visible)
        show_caret(child[0].main_window);
    else
        hide_caret(child[0].main_window);
}

void place_caret_now() {
    place_caret(child[0].main_window, child[0].caret_col * child[0].char_width,
                child[0].caret_row * child[0].char_height);
}

bool bound_caret() {
    const int32_t excess = child[0].current_row - child[0].last_file_row;
    if (excess <= 0)
        return false;
    child[0].current_row = child[0].last_file_row;
    child[0].caret_row = std::max(child[0].caret_row - excess, 0);
    return true;
}

void repaint_now() {
    send_message(child[0].main_window, WM_PAINT, 0, 0);
}

void update_menus() {
    send_message(child[0].main_window, MENUS_MESSAGE, 0, 0);
}

PointerShape begin_wait() {
    return set_pointer_shape(PointerShape::WAIT);
}

void end_wait(PointerShape pointer) {
    set_pointer_shape(pointer);
}

void blank_client(WindowHandle window) {
    constexpr int32_t BLANK_COUNT = sizeof BLANKS - 1;
    for (int32_t row = 0; row <= child[0].window_rows; row++)
        for (int32_t col = 0; col < child[0].window_cols; col += BLANK_COUNT)
            draw_text(window, col * child[0].char_width, row * child[0].char_height, BLANKS,
                      std::min(child[0].window_cols - col, BLANK_COUNT), BLACK, WHITE);
}

}  // namespace hexlane
