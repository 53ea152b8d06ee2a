// scroll.h: how the rows of the document map to the vertical scroll bar. Main thread only.
#pragma once

#include "platform/messages.h"

#include <cstdint>

namespace hexlane {

constexpr int VSCROLL_LIMIT = 30000;  // highest scroll position

// Sets vscroll_scale and vscroll_max from last_file_row and window_rows: one unit is a page of window_rows
// rows, and beyond VSCROLL_LIMIT pages the document is spread over VSCROLL_LIMIT units.
void update_scroll_values();

// The scroll position of a row by that mapping.
int32_t scroll_position_of(int32_t row);

// update_scroll_values, then sets the bar's range: whoever changes the number of rows calls it.
void update_scroll_range(platform::WindowHandle window);

// update_scroll_range, then sets vscroll_pos from current_row, and the thumb.
void update_scrollbar(platform::WindowHandle window);

}  // namespace hexlane
