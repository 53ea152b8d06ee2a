#include "shell/scroll.h"

#include "platform/surface.h"
#include "shell/child.h"

namespace hexlane {

void update_scroll_values() {
    const int32_t pages = child[0].last_file_row / child[0].window_rows;
    if (pages <= VSCROLL_LIMIT) {
        child[0].vscroll_scale = 1.0F;
        child[0].vscroll_max = static_cast<int16_t>(pages);
    } else {
        child[0].vscroll_scale =
            static_cast<float>(child[0].last_file_row / static_cast<double>(VSCROLL_LIMIT));
        child[0].vscroll_max = VSCROLL_LIMIT;
    }
}

int32_t scroll_position_of(int32_t row) {
    if (child[0].vscroll_scale == 1.0F)
        return row / child[0].window_rows;
    const auto position = static_cast<int32_t>(static_cast<float>(row) / child[0].vscroll_scale);
    return position < child[0].vscroll_max ? position : child[0].vscroll_max;
}

void update_scroll_range(platform::WindowHandle window) {
    update_scroll_values();
    platform::set_scroll_range(window, 0, child[0].vscroll_max);
}

void update_scrollbar(platform::WindowHandle window) {
    update_scroll_range(window);
    child[0].vscroll_pos = scroll_position_of(child[0].current_row);
    platform::set_scroll_position(window, child[0].vscroll_pos);
}

}  // namespace hexlane
