// editing.cpp: the frame of every edit, and the Delete key.

#include "edit/editing_internal.h"

#include "platform/desktop.h"
#include "platform/keys.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/window.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "store/store_fault.h"
#include "view/nc_columns.h"
#include "view/text_view.h"

#include <cstring>

namespace hexlane {

int32_t caret_index() {
    if (!child[0].nc_mode)
        return child[0].caret_col;
    build_nc_columns();
    return caret_text_index();
}

int32_t row_length() {
    return static_cast<int32_t>(std::strlen(child[0].row_text));
}

int32_t row_end_column() {
    return child[0].nc_mode ? nc_display_length(child[0].row_text) : row_length();
}

void send_key_down(int key) {
    const int64_t details = platform::key_parameter(platform::key_by_number(key), 1, false);
    platform::send_message(child[0].main_window, platform::WM_KEYDOWN, key, details);
}

int begin_edit() {
    const bool have_row = child[0].pending_row == child[0].current_row;
    if (edits_allowed() && (have_row || (commit_pending() && fetch_row(child[0].current_row))))
        return 1;
    refuse_edit();
    return 0;
}

void refuse_edit() {
    platform::message_beep(platform::BoxIcon::EXCLAMATION);
}

void mark_edited() {
    child[0].pending_row = child[0].current_row;
    child[0].modified = 1;
}

void show_caret_place() {
    place_caret_now();
    show_position();
}

void delete_at_caret() {
    if (!begin_edit())
        return;
    const int32_t index = caret_index();
    const int32_t length = row_length();
    if (index < length) {  // the caret may stand far behind the text
        char* at = child[0].row_text + index;
        std::memmove(at, at + 1, static_cast<size_t>(length - index));
        paint_edited_row();
    } else if (index == length) {
        join_rows(child[0].current_row);
        child[0].modified = 1;
        paint_rows(child[0].current_row, child[0].window_rows, child[0].window_cols, child[0].caret_row);
        if (!fetch_row(child[0].current_row))
            return;
    }
    mark_edited();
}

}  // namespace hexlane
