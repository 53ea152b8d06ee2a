// block_commands.cpp: the four commands on the block, each for whole rows and for a part of a row.

#include "edit/block_commands.h"

#include <algorithm>
#include <cstring>

#include "edit/keyboard.h"
#include "platform/keys.h"
#include "shell/child.h"
#include "shell/scroll.h"
#include "shell/status_line.h"
#include "shell/window.h"
#include "store/cut_file.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "store/store_fault.h"
#include "view/nc_columns.h"
#include "view/text_view.h"

namespace hexlane {

using namespace platform;

Block cut_block = NO_BLOCK;
Block copy_block = NO_BLOCK;

namespace {

int32_t row_count(const Block& rows) {
    return rows.end.row - rows.start.row + 1;
}

int32_t text_length() {
    return static_cast<int32_t>(std::strlen(child[0].row_text));
}

// Whether the document takes an edit now; a beep tells that it does not.
bool edit_begins() {
    if (edits_allowed())
        return true;
    message_beep(BoxIcon::EXCLAMATION);
    return false;
}

// Index into row_text of a display column; in NC Mode nc_columns must fit row_text.
int16_t index_of_column(int32_t col) {
    return static_cast<int16_t>(std::min(child[0].nc_mode ? text_index_from(col) : col, text_length()));
}

// The block inside a row with its columns turned into indexes of the row's text, which row_text takes. Gives
// 1; 0 when no character is between them, -1 when the row can't be read.
int read_block_part(Block* part) {
    *part = block;
    if (!fetch_row(block.start.row))
        return -1;
    if (child[0].nc_mode)
        build_nc_columns();
    part->start.col = index_of_column(block.start.col);
    part->end.col = index_of_column(block.end.col);
    return part->start.col < part->end.col;
}

// Copies the characters of `part` out of row_text.
void copy_characters(const Block& part, char text[ROW_BUFFER_SIZE]) {
    const int count = part.end.col - part.start.col;
    std::memcpy(text, child[0].row_text + part.start.col, static_cast<std::size_t>(count));
    text[count] = '\0';
}

// Stores row_text as the text of `row`. A row that was the end row gets a new one behind it. Gives 1, or 0 on
// failure.
int store_changed_row(int32_t row) {
    child[0].modified = 1;
    child[0].pending_row = row;
    return commit_pending();
}

// ---- Taking away -------------------------------------------------------------------------------------
// All give 1, or 0 when not all of the block could be taken away.

// Takes the rows of the block out. The caret goes to the row that has come to their place, on the screen row
// where the block began, if that is on the screen.
int delete_block_rows() {
    const Block rows = block;
    const int32_t last_before = child[0].last_file_row;
    const int deleted = delete_rows(rows.start.row, row_count(rows));
    if (deleted || child[0].last_file_row != last_before)
        child[0].modified = 1;
    child[0].caret_col = rows.start.col;
    child[0].caret_row = rows.start.screen_row;
    child[0].current_row = rows.start.row;
    hold_caret_in_document();
    child[0].caret_row =
        std::clamp(child[0].caret_row, 0, std::min(child[0].current_row, child[0].window_rows));
    block_clear();
    place_caret_now();
    paint_view();
    update_scrollbar(child[0].main_window);
    update_menus();
    return deleted;
}

// Takes the characters of `part` out of its row, which row_text holds.
int remove_characters(const Block& part) {
    const char* behind = child[0].row_text + part.end.col;
    std::memmove(child[0].row_text + part.start.col, behind, std::strlen(behind) + 1);
    return store_changed_row(part.start.row);
}

// Takes a part of a row out, into `cut` too if that is not nullptr; the caret goes to its place.
int delete_block_part(char cut[ROW_BUFFER_SIZE]) {
    const BlockEnd start = block.start;
    child[0].caret_row = screen_row_of(start.row);
    child[0].current_row = start.row;
    child[0].caret_col = start.col;
    Block part;
    const int found = read_block_part(&part);
    int deleted = found >= 0;
    if (found > 0 && cut != nullptr) {
        copy_characters(part, cut);
        copy_block = NO_BLOCK;
        cut_block = part;
    }
    if (found > 0)
        deleted = remove_characters(part);
    block_clear();
    place_caret_now();
    show_position();
    fetch_row(start.row);  // bytes that a fetch did not show may have moved up into it
    repaint_row(start.row, found > 0);
    update_scrollbar(child[0].main_window);
    update_menus();
    return deleted;
}

int delete_block() {
    if (!block_holds_rows())
        return delete_block_part(nullptr);
    const PointerShape pointer = begin_wait();
    const int deleted = delete_block_rows();
    end_wait(pointer);
    return deleted;
}

void cut_rows() {
    const Block rows = block;
    const PointerShape pointer = begin_wait();
    if (copy_rows_to_cut_file(rows.start.row, row_count(rows))) {
        clear_copy_block();
        cut_block = rows;
        delete_block_rows();
    }
    end_wait(pointer);
}

// ---- Copying -----------------------------------------------------------------------------------------

int copy_rows() {
    const PointerShape pointer = begin_wait();
    const int copied = copy_rows_to_cut_file(block.start.row, row_count(block));
    end_wait(pointer);
    if (copied)
        copy_block = block;
    return copied;
}

int copy_part() {
    Block part;
    if (read_block_part(&part) <= 0)
        return 0;
    copy_block = part;
    return 1;
}

// ---- Pasting -----------------------------------------------------------------------------------------

// The text of a part of a row that would be pasted now; empty when whole rows would be, or nothing.
void text_to_paste(char text[ROW_BUFFER_SIZE]) {
    text[0] = '\0';
    const bool copied = copy_block.start.row >= 0;
    if (!copied && cut_block.start.row >= 0 && cut_block.end.row < 0)
        std::memcpy(text, child[0].cut_text, sizeof child[0].cut_text);
    if (!copied || copy_block.end.row >= 0 || !fetch_row(copy_block.start.row))
        return;
    Block part = copy_block;
    part.end.col = std::min(part.end.col, static_cast<int16_t>(text_length()));
    part.start.col = std::min(part.start.col, part.end.col);
    copy_characters(part, text);
}

void paste_rows(int32_t count) {
    const PointerShape pointer = begin_wait();
    const int32_t last_before = child[0].last_file_row;
    if (paste_rows_from_cut_file(child[0].current_row, count) || child[0].last_file_row != last_before)
        child[0].modified = 1;
    update_scrollbar(child[0].main_window);
    paint_rows(child[0].current_row, child[0].window_rows, child[0].window_cols, child[0].caret_row);
    end_wait(pointer);
}

void paste_text(const char* text) {
    const int32_t row = child[0].current_row;
    const auto added = static_cast<int32_t>(std::strlen(text));
    if (added == 0)
        return;
    if (!fetch_row(row) || text_length() + added > ROW_PASTE_MAX) {
        message_beep(BoxIcon::EXCLAMATION);
        return;
    }
    if (child[0].nc_mode)
        build_nc_columns();
    char* at = child[0].row_text + index_of_column(child[0].caret_col);
    std::memmove(at + added, at, std::strlen(at) + 1);
    std::memcpy(at, text, static_cast<std::size_t>(added));
    store_changed_row(row);
    fetch_row(row);  // the last character of the longest row is stored, but not shown
    repaint_row(row, true);
    update_scrollbar(child[0].main_window);
}

// Rows that go ahead of a paste. A document keeps one.
int32_t rows_that_give_way() {
    return child[0].block_active && block_holds_rows() ? std::min(row_count(block), child[0].last_file_row)
                                                       : 0;
}

}  // namespace

void block_dismiss() {
    if (!child[0].block_active)
        return;
    child[0].block_active = 0;
    commit_pending();
    paint_view();
    block_clear();
    update_menus();
}

void clear_cut_block() {
    cut_block = NO_BLOCK;
}

void clear_copy_block() {
    copy_block = NO_BLOCK;
    child[0].block_active = 0;
    set_caret_visible(true);
}

void command_cut() {
    if (block.start.row < 0 || !edit_begins())
        return;
    if (block_holds_rows())
        cut_rows();
    else
        delete_block_part(child[0].cut_text);
}

void command_copy() {
    if (block.start.row < 0 || !edit_begins())
        return;
    if (block_holds_rows() ? copy_rows() : copy_part()) {
        clear_cut_block();
        update_menus();
    }
}

void command_paste() {
    if (!edit_begins())
        return;
    // Read before a block gives way to it: that may be the very text that was copied.
    char text[ROW_BUFFER_SIZE];
    text_to_paste(text);
    const Block& source = copy_block.start.row >= 0 ? copy_block : cut_block;
    const bool whole_rows = source.start.row >= 0 && source.end.row >= 0;
    if (whole_rows && !room_for_rows(row_count(source) - rows_that_give_way()))
        return;
    if (child[0].block_active && !delete_block())
        return;
    if (whole_rows)
        paste_rows(row_count(source));
    else
        paste_text(text);
}

void command_delete() {
    if (block.start.row < 0) {
        send_message(child[0].main_window, WM_KEYDOWN, VK_DELETE,
                     key_parameter(key_by_number(VK_DELETE), 1, false));
        return;
    }
    if (edit_begins())
        delete_block();
}

}  // namespace hexlane
