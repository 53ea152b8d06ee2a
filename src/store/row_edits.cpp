// row_edits.cpp: blank rows, splitting, joining, and the end row. Deletion is in row_delete.cpp.

#include "store/row_edits.h"

#include <algorithm>
#include <cstring>

#include "shell/child.h"
#include "store/row_bytes.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/segment_rewrite.h"
#include "store/store_fault.h"

namespace hexlane {

namespace {

int32_t text_length() {
    return static_cast<int32_t>(std::strlen(child[0].row_text));
}

// Stores the text in front of `column` in `row`, and the text behind it with the row's unseen bytes in the
// blank row that follows.
int part_row(int32_t row, int32_t column, const RowRecord& record, const RowSpan& rest) {
    char behind[ROW_BUFFER_SIZE];
    std::memcpy(behind, child[0].row_text + column, sizeof behind - static_cast<std::size_t>(column));
    if (!store_row_text(row + 1, behind, &rest))
        return 0;
    child[0].row_text[column] = '\0';
    if (!store_row_text(row, child[0].row_text, nullptr)) {
        // The row itself is still whole, so the part must not stand twice.
        (void)write_record(row + 1, {0, ORIGIN_BLANK});
        (void)write_record(row, record);
        return 0;
    }
    std::memcpy(child[0].row_text, behind, sizeof behind - static_cast<std::size_t>(column));
    forget_cached_rows();
    return 1;
}

}  // namespace

int room_for_rows(int32_t count) {
    return count <= MAX_ROWS - 1 - child[0].last_file_row ? 1 : fail_full_table();
}

int insert_blank_rows(int32_t row, int32_t count) {
    if (!room_for_rows(count))
        return 0;
    if (row > child[0].last_file_row || (row == child[0].last_file_row && row_is_empty(row)))
        return append_blank_records(count) ? 1 : fail_edit(child[0].segment_path);
    if (locate_row(row) < 0)
        return fail_edit(child[0].segment_path);
    const int segment = child[0].current_segment;
    if (!rewrite_segment(segment, row - segment_table[segment].first_row, 0, count))
        return fail_edit(child[0].segment_path);
    shift_rows_behind(segment, count);
    return 1;
}

int split_row(int32_t row, int32_t column) {
    child[0].modified = 1;
    if (column == 0)
        return insert_blank_rows(row, 1);
    if (!insert_blank_rows(row + 1, 1) || !fetch_row(row))
        return 0;
    if (column >= text_length())
        return 1;
    RowRecord record;
    RowSpan rest;
    if (!read_record(row, &record) || !unseen_rest(record, SHOWN_BY_FETCH, &rest) ||
        !part_row(row, column, record, rest))
        return fail_edit(child[0].change_path);
    return 1;
}

int join_rows(int32_t row) {
    if (row >= child[0].last_file_row)
        return 0;
    char first[ROW_BUFFER_SIZE];
    std::memcpy(first, child[0].row_text, sizeof first);
    RowRecord record, next;
    RowSpan row_rest, next_rest;
    if (!read_record(row, &record) || !unseen_rest(record, SHOWN_BY_FETCH, &row_rest) ||
        !fetch_row(row + 1) || !read_record(row + 1, &next) ||
        !unseen_rest(next, SHOWN_BY_FETCH, &next_rest)) {
        std::memcpy(child[0].row_text, first, sizeof first);
        return fail_edit(child[0].file_path);
    }
    const std::size_t length = std::strlen(first);
    if (length + std::strlen(child[0].row_text) > ROW_EDIT_MAX || row_rest.length > 0) {
        std::memcpy(child[0].row_text, first, sizeof first);
        return 0;
    }
    char joined[ROW_BUFFER_SIZE];
    std::memcpy(joined, first, length);
    std::memcpy(joined + length, child[0].row_text, sizeof joined - length);
    std::memcpy(child[0].row_text, joined, sizeof joined);
    if (!store_row_text(row, joined, &next_rest))
        return fail_edit(child[0].change_path);
    const int32_t last = child[0].last_file_row;
    if (!delete_rows(row + 1, 1) && child[0].last_file_row == last) {
        (void)write_record(row, record);  // the row behind is still there, so its text must not stand twice
        forget_cached_rows();
        return 0;
    }
    child[0].modified = 1;
    if (row == child[0].last_file_row)
        return add_end_row_after_join();
    return 1;
}

int add_end_row(bool force) {
    const int32_t last = child[0].last_file_row;
    if (!force) {
        if (last == 0 || row_is_empty(last))
            return 1;
        if (!fetch_row(last - 1))
            return 0;
        if (row_had_lf)
            return 1;
    }
    child[0].row_text[0] = '\0';
    if (!store_row_text(last + 1, "", nullptr))
        return fail_edit(child[0].change_path);
    set_last_file_row(last + 1);
    forget_cached_rows();
    return 1;
}

int add_end_row_after_join() {
    if (child[0].row_text[0] == '\0')
        return 1;
    return insert_blank_rows(child[0].last_file_row + 1, 1);
}

}  // namespace hexlane
