// block_buffer.cpp: the Delete command on the block, and the records of what was cut and copied.

#include "store/block_buffer.h"

#include <cstring>

#include "frame/child.h"
#include "frame/command_state.h"
#include "frame/main_window.h"
#include "frame/scroll.h"
#include "frame/status_line.h"
#include "platform/keys.h"
#include "store/row_edits.h"
#include "store/store_fault.h"
#include "view/nc_columns.h"
#include "view/text_view.h"

namespace hexlane {

using namespace platform;

Block cut_block = NO_BLOCK;
Block copy_block = NO_BLOCK;

namespace {

// Takes the rows of `block` out; the caret ends where the block began.
void delete_block_rows() {
    const int32_t first = block.start.row;
    const int32_t count = block.end.row - first + 1;
    const int32_t screen_row = block.start.screen_row;
    const PointerShape pointer = begin_wait();
    delete_rows(first, count);
    child[0].caret_col = block.start.col;
    child[0].caret_row = screen_row;
    child[0].current_row = first;
    hold_caret_in_document();
    block_clear();
    if (child[0].caret_row < 0 || child[0].caret_row > child[0].current_row)
        child[0].caret_row = child[0].current_row;
    place_caret_now();
    paint_view();
    child[0].modified = 1;
    update_scrollbar(child[0].main_window);
    end_wait(pointer);
    update_menus(child[0].main_window);
}

// In NC Mode the block's columns are those of the spread row; the text needs indexes.
void turn_columns_into_indexes() {
    if (!child[0].nc_mode || block.end.row >= 0)
        return;
    fetch_row(block.start.row);
    build_nc_columns();
    block.start.col = static_cast<int16_t>(column_text_index(block.start.col));
    block.end.col = static_cast<int16_t>(column_text_index(block.end.col));
}

}  // namespace

void clear_cut_block() {
    cut_block = NO_BLOCK;
}

void clear_copy_block() {
    copy_block = NO_BLOCK;
    child[0].block_active = 0;
    set_caret_visible(true);
}

void delete_within_row(int32_t row) {
    fetch_row(child[0].current_row);
    const int32_t length = static_cast<int32_t>(std::strlen(child[0].row_text));
    const int32_t first = block.start.col;
    const int32_t behind = block.end.col < length ? block.end.col : length;
    if (first < 0 || first >= behind)
        return;
    std::memmove(child[0].row_text + first, child[0].row_text + behind,
                 static_cast<std::size_t>(length - behind) + 1);
    if (commit_row(row))
        child[0].modified = 1;
}

void command_delete() {
    if (block.start.row < 0) {
        send_message(child[0].main_window, WM_KEYDOWN, VK_DELETE,
                     key_parameter(key_by_number(VK_DELETE), 1, false));
        return;
    }
    if (!edits_allowed()) {
        message_beep(BoxIcon::EXCLAMATION);
        return;
    }
    const int16_t column = block.start.col;
    turn_columns_into_indexes();
    if (block.end.row >= 0) {
        delete_block_rows();
        return;
    }
    delete_within_row(child[0].current_row);
    child[0].caret_col = column;
    block_clear();
    place_caret_now();
    repaint_row(child[0].current_row, true);
}

}  // namespace hexlane
