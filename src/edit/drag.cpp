// drag.cpp: what the moves of a held button make of the block, inside the window and outside of it.
//
// The pointer may jump; the block becomes what it would be if the pointer had crossed every row and column
// between. So it does not depend on how fast the mouse is moved or how often it is asked.

#include "edit/drag_internal.h"

#include "edit/editing_internal.h"
#include "edit/mouse.h"
#include "edit/selection_internal.h"
#include "platform/desktop.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/window.h"
#include "view/text_view.h"

#include <algorithm>

namespace hexlane {
namespace {

constexpr int32_t HEADER_ROWS = 3;  // character heights that title and menu take above the text

// The row in front of the one at `place`: whole rows end in front of the pointer's row.
BlockEnd row_above(const BlockEnd& place) {
    return {place.col, static_cast<int16_t>(place.screen_row - 1), place.row - 1};
}

// Left of the start it is the start that moves, and what was the start becomes the end.
void fit_columns() {
    const auto col = static_cast<int16_t>(child[0].caret_col);
    if (col > block.start.col) {
        block.end.col = col;
        return;
    }
    block.end.col = std::max(block.start.col, block.end.col);
    block.start.col = col;
}

void drag_to_column(int32_t col) {
    do {
        child[0].caret_col += (col > child[0].caret_col) - (col < child[0].caret_col);
        fit_columns();
    } while (child[0].caret_col != col);
}

// The block when the caret has come to its row from the row above. Inside the block what is above falls away.
void fit_rows_downward() {
    const BlockEnd caret = caret_place();
    if (block.start.row <= caret.row && caret.row < block.end.row)
        block_begin();
    else
        block.end = row_above(caret);
}

// The same from the row below. A block inside a row is left upwards: its own row does not belong to it.
void fit_rows_upward() {
    const BlockEnd caret = caret_place();
    if (!block_holds_rows())
        block.end = row_above(block.start);
    if (block.start.row <= caret.row && caret.row <= block.end.row)
        block.end = row_above(caret);
    else
        block.start = caret;
}

// On the row where the block starts it stays as it is.
void fit_rows(int32_t step) {
    if (child[0].current_row == block.start.row)
        return;
    if (step < 0)
        fit_rows_upward();
    else
        fit_rows_downward();
}

// Notes which rows show the block now: those must be painted again when they leave it. Of a part of a row
// that is its row.
void note_rows_on_show() {
    previous_block = block;
    if (!block_holds_rows())
        previous_block.end = block.start;
}

// Takes the caret to a row of the document that is on the screen.
void drag_to_row(int32_t row) {
    note_rows_on_show();
    do {
        const int32_t step = (row > child[0].current_row) - (row < child[0].current_row);
        child[0].current_row += step;
        child[0].caret_row += step;
        fit_rows(step);
    } while (child[0].current_row != row);
    block_order_ends();
}

// The view goes one row on, and the caret on the bottom row with it.
void scroll_down() {
    ++child[0].current_row;
    --block.start.screen_row;
}

// The block's last row is the caret's, the lowest one on the screen.
void end_at_caret() {
    block.end = {block.end.col, static_cast<int16_t>(child[0].caret_row), child[0].current_row};
    block_order_ends();
    paint_view();
}

void show_part_of_row() {
    if (!child[0].nc_mode) {
        paint_row_with_block(block.start.row);
        return;
    }
    block_begin();
    block.end = {block.end.col, static_cast<int16_t>(child[0].caret_row), block.start.row};
    paint_block_rows(top_row(), child[0].window_rows, child[0].window_cols, 0);
}

void scroll_up_to_pointer() {
    if (child[0].caret_row > 0) {
        drag_to_row(top_row());
    } else {
        --child[0].current_row;
        fit_rows(-1);
        block_order_ends();
    }
    paint_view();
}

void scroll_down_to_pointer() {
    const int32_t bottom = std::min(top_row() + child[0].window_rows, child[0].last_file_row);
    if (child[0].current_row < bottom)
        drag_to_row(bottom);
    else
        scroll_down();
    end_at_caret();
}

}  // namespace

void begin_drag() {
    platform::set_capture(child[0].main_window);
    block_begin();
}

void drag_to_cell(int32_t col, int32_t row) {
    if (col < 0 || col > child[0].window_cols)
        return;
    if (row < 0 || row > child[0].window_rows) {
        const bool at_bottom = child[0].caret_row == child[0].window_rows;
        if (row > 0 && at_bottom && child[0].current_row < child[0].last_file_row) {
            scroll_down();
            end_at_caret();
        }
        show_caret_place();
        return;
    }
    drag_to_column(col);
    drag_to_row(std::clamp(top_row() + row, 0, child[0].last_file_row));
    if (block_holds_rows())
        paint_block_rows(top_row(), child[0].window_rows, child[0].window_cols, 0);
    else
        show_part_of_row();
    show_caret_place();
}

void drag_scroll(int, int y) {
    const int32_t row = y / child[0].char_height;
    if (row < child[0].window_top + HEADER_ROWS && child[0].current_row > 0)
        scroll_up_to_pointer();
    else if (row >= child[0].window_bottom - 1 && child[0].current_row < child[0].last_file_row)
        scroll_down_to_pointer();
    show_caret_place();
}

}  // namespace hexlane
