// store_fault.cpp: the mark of a failed write, the row that could not be stored, and the retry.

#include "store/store_fault.h"

#include <cstring>

#include "platform/desktop.h"
#include "platform/text.h"
#include "shell/child.h"
#include "shell/window.h"
#include "store/row_bytes.h"
#include "store/row_edits.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/store_texts.h"

namespace hexlane {

using namespace platform;

StoreFault store_fault = {0, FileError::NONE, "", 0, 0};
UnsavedRow unsaved_row = {-1, "", SHOWN_BY_FETCH};

void raise_store_fault(const char* path) {
    store_fault.damaged = 1;
    store_fault.table_full = 0;
    store_fault.error = last_file_error();
    copy_text(store_fault.path, sizeof store_fault.path, path);
    if (store_fault.told)
        return;
    store_fault.told = 1;
    post_message(child[0].main_window, STORE_FAULT_MESSAGE, 0, 0);
}

int fail_edit(const char* path) {
    store_fault.told = 0;
    raise_store_fault(path);
    return 0;
}

int fail_full_table() {
    set_last_file_error(FileError::TOO_LARGE);
    fail_edit(child[0].file_path);
    store_fault.table_full = 1;
    return 0;
}

void keep_unsaved_row(int32_t row, int32_t shown) {
    if (unsaved_row.row < 0) {
        unsaved_row.shown = shown;  // of a row that failed before, the first failure's is the one that holds
        store_fault.told = 0;       // that an edit has failed before says nothing of a row
    }
    unsaved_row.row = row;
    std::memcpy(unsaved_row.text, child[0].row_text, sizeof unsaved_row.text);
}

void clear_store_fault() {
    store_fault.damaged = 0;
    store_fault.error = FileError::NONE;
    store_fault.told = 0;
    store_fault.table_full = 0;
    unsaved_row.row = -1;
    unsaved_row.shown = SHOWN_BY_FETCH;
}

int edits_allowed() {
    if (unsaved_row.row < 0)
        return 1;
    const int32_t row = unsaved_row.row;
    RowRecord record;
    RowSpan rest;
    if (!read_record(row, &record) || !unseen_rest(record, unsaved_row.shown, &rest) ||
        !store_row_text(row, unsaved_row.text, &rest))
        return 0;
    clear_store_fault();
    forget_cached_rows();
    if (row == child[0].last_file_row && !row_is_empty(row))
        return insert_blank_rows(row + 1, 1);
    return 1;
}

void show_store_fault() {
    if (!store_fault.damaged)
        return;  // made good before the message came
    if (store_fault.table_full) {
        char limit[24];
        format_text(limit, sizeof limit, "%d", MAX_ROWS);
        store_fault.damaged = unsaved_row.row >= 0;  // no file has failed, and the next failure is news
        store_fault.told = 0;
        store_fault.table_full = 0;
        show_store_box(StoreBox::TABLE_FULL, limit);
        return;
    }
    const char* reason = file_error_text(store_fault.error);
    show_store_box(unsaved_row.row >= 0 ? StoreBox::ROW_NOT_STORED : StoreBox::STORE_FAILED, store_fault.path,
                   reason);
}

}  // namespace hexlane
