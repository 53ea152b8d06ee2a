// selection.cpp: the block by keyboard. A row is taken whole as soon as the keys leave the row.
//
// A caret on column 0 stands in front of its row: the block then stops short of it. A block that a first step
// down begins inside a row takes that row and the next, and the caret goes to the start of the row behind
// them, so that the steps that follow are of the first kind. Up is the mirror image of this.

#include "edit/selection_internal.h"

#include "edit/block_commands.h"
#include "edit/editing_internal.h"
#include "shell/child.h"
#include "shell/scroll.h"
#include "shell/window.h"
#include "view/text_view.h"

namespace hexlane {
namespace {

void put_on_show() {
    child[0].block_active = 1;
    set_caret_visible(false);
}

void begin_at(const BlockEnd& place) {
    put_on_show();
    block.start = place;
}

// Makes whole rows of a block inside a row: from its row on.
void take_rows() {
    if (!block_holds_rows())
        block.end = block.start;
}

BlockEnd row_above_caret() {
    const BlockEnd caret = caret_place();
    return {caret.col, static_cast<int16_t>(caret.screen_row - 1), caret.row - 1};
}

// The view has moved by `rows` under the block.
void scroll_ends(int32_t rows) {
    block.start.screen_row = static_cast<int16_t>(block.start.screen_row - rows);
    if (block_holds_rows())
        block.end.screen_row = static_cast<int16_t>(block.end.screen_row - rows);
}

// A part of another row can't grow with the caret. It comes to that when Ctrl has moved the caret away.
void drop_part_of_other_row(int32_t row) {
    if (child[0].block_active && !block_holds_rows() && block.start.row != row)
        block_dismiss();
}

void show_block() {
    if (child[0].block_active && !block_holds_rows())
        paint_row_with_block(block.start.row);
    else
        paint_view();
}

}  // namespace

BlockEnd caret_place() {
    return {static_cast<int16_t>(child[0].caret_col), static_cast<int16_t>(child[0].caret_row),
            child[0].current_row};
}

void extend_left(const BlockEnd& from) {
    drop_part_of_other_row(from.row);
    if (block_holds_rows()) {
        child[0].caret_col = from.col;
        return;
    }
    if (!child[0].block_active)
        block.end.col = from.col;
    block_begin();
}

void extend_right(const BlockEnd& from) {
    drop_part_of_other_row(from.row);
    if (block_holds_rows()) {
        child[0].caret_col = from.col;
        return;
    }
    if (!child[0].block_active)
        begin_at(from);
    block.end.col = static_cast<int16_t>(from.col + 1);
}

void extend_to_row_start(const BlockEnd& from) {
    drop_part_of_other_row(from.row);
    if (!child[0].block_active)
        block.end.col = from.col;
    block_begin();
    update_scrollbar(child[0].main_window);
}

void extend_to_row_end(const BlockEnd& from) {
    drop_part_of_other_row(from.row);
    if (!child[0].block_active)
        begin_at(from);
    block.end.col = static_cast<int16_t>(child[0].caret_col);
    update_scrollbar(child[0].main_window);
}

void extend_to_document_start(const BlockEnd& from) {
    if (!block_holds_rows())
        block.end = from;
    block_begin();
}

void extend_to_document_end(const BlockEnd& from) {
    if (!child[0].block_active)
        begin_at(from);
    block.end = caret_place();
}

void extend_up(const BlockEnd& from) {
    const bool first = !child[0].block_active;
    const bool inside_row = !first && !block_holds_rows();
    if (first)
        block.end = {static_cast<int16_t>(from.col - 1), static_cast<int16_t>(from.screen_row - 1),
                     from.row - 1};
    else
        take_rows();
    const BlockEnd caret = caret_place();
    const bool outside = caret.row < block.start.row || caret.row > block.end.row;
    if (!first && !inside_row && !outside) {
        block.end = {caret.col, static_cast<int16_t>(block.end.screen_row - 1), block.end.row - 1};
        if (block.end.row < block.start.row)
            block_clear();
        return;
    }
    if (caret.col == 0) {
        put_on_show();
        block.start = {first ? caret.col : block.start.col, caret.screen_row, caret.row};
        return;
    }
    block_begin();
    child[0].caret_col = 0;
    if (first) {
        ++block.end.screen_row;
        ++block.end.row;
    }
}

void extend_down(const BlockEnd& from) {
    if (!child[0].block_active)
        begin_at(from);
    scroll_ends(top_row() - (from.row - from.screen_row));
    const BlockEnd caret = caret_place();
    if (caret.row <= block.start.row || caret.row <= block.end.row) {
        take_rows();
        block_begin();
    } else if (caret.col != 0) {
        block.end = caret;
        const int32_t top = top_row();
        move_down();
        scroll_ends(top_row() - top);
        child[0].caret_col = 0;
    } else if (block.start.row == from.row && block.end.row == from.row) {
        block_clear();  // the one row that a step up took
    } else {
        block.end = row_above_caret();
    }
}

void extend_page_up(const BlockEnd& from) {
    if (!child[0].block_active)
        block.end = from;
    else
        take_rows();
    block_begin();
}

void extend_page_down(const BlockEnd& from) {
    if (!child[0].block_active)
        begin_at(from);
    block.end = caret_place();
}

void extend_block(void (*move)(), ExtendBlock extend) {
    const BlockEnd from = caret_place();
    move();
    extend(from);
    block_order_ends();
    show_block();
}

}  // namespace hexlane
