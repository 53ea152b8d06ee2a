// mouse.cpp: presses, moves and releases of the left button. What a drag makes of the block is in drag.cpp.

#include "edit/mouse.h"

#include "edit/block_commands.h"
#include "edit/drag_internal.h"
#include "edit/editing_internal.h"
#include "platform/messages.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/window.h"
#include "store/row_table.h"
#include "view/text_view.h"

#include <algorithm>

namespace hexlane {
namespace {

// A press or release takes what was typed into the store, and draws it as it is stored.
void commit_and_repaint() {
    if (child[0].pending_row == -1)
        return;
    commit_pending();
    paint_rows(child[0].current_row, child[0].window_rows, child[0].window_cols, child[0].caret_row);
}

void move_caret_to_cell(int32_t col, int32_t row) {
    if (col < 0 || col > child[0].window_cols || row < 0 || row > child[0].window_rows)
        return;
    row = std::min(row, child[0].last_file_row - top_row());
    child[0].current_row += row - child[0].caret_row;
    child[0].caret_row = row;
    child[0].caret_col = col;
}

// A block without a cell has been no more than a click, or a drag that has seen no cell and so has no end.
void finish_block() {
    if (!block_holds_rows() && block.end.col <= block.start.col) {
        block_dismiss();
        return;
    }
    paint_rows(child[0].current_row, child[0].window_rows, child[0].window_cols, child[0].caret_row);
    if (!block_holds_rows())
        paint_row_with_block(block.start.row);
}

}  // namespace

void handle_mouse_down(int, int x, int y) {
    commit_and_repaint();
    if (child[0].block_active)
        block_dismiss();
    else
        set_caret_visible(false);
    move_caret_to_cell(x / child[0].char_width, y / child[0].char_height);
    show_caret_place();
}

void handle_mouse_move(int flags, int x, int y) {
    const bool dragging = flags == platform::MK_LBUTTON;
    if (dragging && !child[0].block_active && child[0].mouse_pressed) {
        commit_and_repaint();
        begin_drag();
    }
    child[0].mouse_pressed = 1;
    if (dragging && child[0].block_active)
        drag_to_cell(x / child[0].char_width, y / child[0].char_height);
}

void handle_mouse_up(int, int) {
    commit_and_repaint();
    if (child[0].block_active)
        finish_block();
    else
        set_caret_visible(true);
    show_caret_place();
}

}  // namespace hexlane
