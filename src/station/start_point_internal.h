// start_point_internal.h: the state of the start point screen, shared by its view, its search and its block
// feed.
#pragma once

#include "platform/messages.h"
#include "platform/views.h"

#include <cstdint>

namespace hexlane {

// One showing of the screen; wiped when it opens.
struct StartPoint {
    platform::ViewHandle view;
    int32_t cursor_row;   // row of the file
    int32_t cursor_line;  // line of the screen
    int32_t page_top;     // top row that a Page Up or Page Down has just left, -1 behind another move
    bool block_marked;
    int32_t block_start_row;  // -1 unset
    int32_t block_end_row;    // -1 unset
    bool block_running;       // rows are being fed
    bool row_started;         // a piece of the cursor's row has been written
};
extern StartPoint start_point;

// Moves the cursor to a row: on the screen only the line changes, otherwise the row comes up on the fourth
// line.
void go_to_row(int32_t row);
void move_cursor_down();

// Enables or disables what must not be touched while rows are fed.
void enable_feed_buttons(bool enabled);

// The view SearchDlg over the screen (start_point_search.cpp).
void show_search_for();

// Send Block (start_point_feed.cpp): begins, goes on at NEXT_ROW_MESSAGE, and stops.
void begin_feed();
void feed_next_row();
void cancel_feed();  // by the user, in the middle of a row
void stop_feed();

}  // namespace hexlane
