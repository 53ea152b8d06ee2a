// row_table.cpp: fetching and committing the text of one row. The records are in row_records.cpp, where a
// row's bytes stand in row_bytes.cpp, loading in load.cpp, saving in save.cpp.

#include "store/row_table.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"
#include "platform/text_stream.h"
#include "shell/child.h"
#include "shell/scroll.h"
#include "store/row_bytes.h"
#include "store/row_edits.h"
#include "store/row_records.h"
#include "store/store_fault.h"

namespace hexlane {

using namespace platform;

namespace {

// How row_text relates to what is stored of its row, from the last fetch or commit.
struct SeenRow {
    int32_t row;    // -1: not known
    int32_t shown;  // bytes of the stored row that row_text stands for
    bool whole;     // nothing of the row is stored behind them
    bool readable;
} seen = {-1, 0, true, true};

void clear_row_text() {
    std::memset(child[0].row_text, 0, sizeof child[0].row_text);
}

// Notes that the row in row_text could not be read: it must not be committed over what is stored.
int fail_fetch(int32_t row, const char* path) {
    clear_row_text();
    seen = {row, 0, true, false};
    raise_store_fault(path);
    return 0;
}

// How many bytes of the stored row row_text stands for.
int32_t shown_of(int32_t row) {
    return seen.row == row ? seen.shown : SHOWN_BY_FETCH;
}

// fetched_rest without the mark on the store.
int find_rest(int32_t row, RowSpan* rest) {
    *rest = {ORIGIN_BLANK, 0, 0, -1, 0};
    if (seen.row == row && seen.whole)
        return 1;
    RowRecord record;
    return read_record(row, &record) && unseen_rest(record, shown_of(row), rest);
}

void fetch_unsaved_row() {
    std::memcpy(child[0].row_text, unsaved_row.text, sizeof unsaved_row.text);
    child[0].row_origin = ORIGIN_CHANGE;
    row_had_lf = 1;
    seen = {unsaved_row.row, unsaved_row.shown, false, true};
}

}  // namespace

void reset_store() {
    reset_records();
    forget_cached_rows();
}

void forget_cached_rows() {
    drop_record_window();
    seen = {-1, 0, true, true};
}

void set_last_file_row(int32_t row) {
    child[0].last_file_row = row;
    update_scroll_range(child[0].main_window);
}

void begin_row_batch() {
    begin_record_batch();
}

int end_row_batch() {
    int32_t row = -1;
    char path[PATH_SIZE];
    if (end_record_batch(&row, path))
        return 1;
    if (unsaved_row.row >= 0)
        return 0;  // the commit that could not be taken has told it
    const FileError reason = last_file_error();
    if (fetch_row(row))
        keep_unsaved_row(row, seen.shown);
    set_last_file_error(reason);
    raise_store_fault(path);
    return 0;
}

int fetch_row(int32_t row) {
    row_had_lf = 0;
    clear_row_text();
    seen.row = -1;
    if (row > child[0].last_file_row || row < 0)
        return 1;
    if (row == unsaved_row.row) {
        fetch_unsaved_row();
        return 1;
    }
    RowRecord record;
    if (!read_record(row, &record))
        return fail_fetch(row, child[0].segment_path);
    child[0].row_origin = record.origin;
    seen = {row, 0, true, true};
    if (record.origin == ORIGIN_BLANK)
        return 1;
    const bool from_file = record.origin == ORIGIN_FILE;
    const LineRead line = stream_read_line(from_file ? child[0].file_stream : child[0].change_stream,
                                           record.position, child[0].row_text, ROW_FETCH_MAX);
    if (line.end == LineEnd::FAILED)
        return fail_fetch(row, from_file ? child[0].file_path : child[0].change_path);
    const std::size_t length = std::strlen(child[0].row_text);
    if (length <
        static_cast<std::size_t>(line.length)) {  // a NUL ended the row: what was read behind it is others'
        std::memset(child[0].row_text + length, 0, sizeof child[0].row_text - length);
        seen.shown = static_cast<int32_t>(length);
        return 1;
    }
    row_had_lf = line.end == LineEnd::LF;
    seen.shown = line.length;
    seen.whole = line.end == LineEnd::LF || line.end == LineEnd::END;
    return 1;
}

int fetched_rest(int32_t row, RowSpan* rest) {
    if (find_rest(row, rest))
        return 1;
    raise_store_fault(child[0].file_path);
    return 0;
}

int commit_row(int32_t row) {
    if (seen.row == row && !seen.readable)
        return 0;  // told when the fetch failed; what is stored is better than an empty row
    if (unsaved_row.row >= 0 && unsaved_row.row != row)
        return 0;
    RowSpan rest;
    if (!find_rest(row, &rest) || !store_row_text(row, child[0].row_text, &rest)) {
        keep_unsaved_row(row, shown_of(row));
        raise_store_fault(failed_store_file());
        return 0;
    }
    seen = {row, static_cast<int32_t>(std::strlen(child[0].row_text)), rest.length == 0, true};
    if (unsaved_row.row == row)
        clear_store_fault();
    return 1;
}

int commit_pending_in_place() {
    if (child[0].pending_row < 0)
        return 1;
    const int committed = commit_row(child[0].pending_row);
    child[0].pending_row = -1;
    return committed;
}

int commit_pending() {
    const int32_t row = child[0].pending_row;
    if (row < 0)
        return 1;
    if (!commit_pending_in_place())
        return 0;
    if (row == child[0].last_file_row && !row_is_empty(row))
        return insert_blank_rows(row + 1, 1);
    return 1;
}

void close_document() {
    if (child[0].file_open) {
        stream_close(child[0].file_stream);
        stream_discard(child[0].change_stream);
        child[0].file_stream = NO_STREAM;
        child[0].change_stream = NO_STREAM;
    }
    for (SegmentEntry& entry : segment_table) {
        if (entry.is_open)
            file_close(entry.handle);
        entry.is_open = 0;
    }
    child[0].file_open = 0;
    child[0].pending_row = -1;
    forget_cached_rows();
    clear_store_fault();
}

}  // namespace hexlane
