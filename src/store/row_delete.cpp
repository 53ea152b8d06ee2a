// row_delete.cpp: taking rows out, inside one segment and across many.
//
// The row in front of a gap is committed before the records behind it go: as a change row it ends the run of
// unchanged rows there, so that a save does not bring the deleted bytes back. Committing first means that a
// deletion that fails afterwards has done no harm.

#include <algorithm>

#include "frame/child.h"
#include "platform/files.h"
#include "store/row_edits.h"
#include "store/segment_rewrite.h"
#include "store/store_fault.h"

namespace hexlane {

using namespace platform;

namespace {

int commit_row_in_front(int32_t row) {
    if (row <= 0)
        return 1;
    if (!fetch_row(row - 1))
        return 0;
    const bool is_change_row = child[0].row_origin == ORIGIN_CHANGE && unsaved_row.row < 0;
    return is_change_row || commit_row(row - 1);
}

// The steps behind each deletion: the end row, and the text of the row in front of the gap in row_text.
int finish_deletion(int32_t row) {
    const int added = add_end_row(false);
    if (row > 0)
        fetch_row(row - 1);
    return added;
}

// Takes `count` records out of `segment`, from its record `index` on.
int cut_segment(int segment, int32_t index, int32_t count) {
    if (index == 0 && count == segment_rows(segment)) {  // nothing stays: no copy is needed
        child[0].current_segment = static_cast<int16_t>(segment);
        if (!segment_table[segment].is_open && !open_segment(false))
            return 0;
        if (!segment_table[segment].shares_file && !file_resize(segment_table[segment].handle, 0))
            return 0;
    } else if (!rewrite_segment(segment, index, count, 0)) {
        return 0;
    }
    shift_rows_behind(segment, -count);
    return 1;
}

// The rows [row, row + count) from the start of segment `a` to inside segment `b`: the entries between go
// with their files, and only the head of b is rewritten.
int delete_from_segment_start(int32_t row, int32_t count, int a, int b, int32_t head) {
    if (!drop_segment_head(b, head))
        return 0;
    if (segment_table[a].is_open)
        file_close(segment_table[a].handle);
    segment_table[b].first_row = row;
    segment_table[a] = segment_table[b];
    segment_table[b].is_open = 0;
    remove_segments(a + 1, b);
    child[0].current_segment = static_cast<int16_t>(a);
    shift_rows_behind(a, -count);
    return 1;
}

int delete_segment_by_segment(int32_t row, int32_t count, int a, int b) {
    const int32_t behind = row + count;
    for (int segment = b; segment >= a; segment--) {
        const int32_t first = segment_table[segment].first_row;
        const int32_t from = std::max(row, first);
        const int32_t to = std::min(behind, first + segment_rows(segment));
        if (from < to && !cut_segment(segment, from - first, to - from))
            return 0;
    }
    return 1;
}

}  // namespace

int delete_rows_in_segment(int32_t row, int32_t count) {
    if (!commit_row_in_front(row))
        return 0;
    if (locate_row(row) < 0)
        return fail_edit(child[0].segment_path);
    const int segment = child[0].current_segment;
    if (!cut_segment(segment, row - segment_table[segment].first_row, count))
        return fail_edit(child[0].segment_path);
    return finish_deletion(row);
}

int delete_rows(int32_t row, int32_t count) {
    count = std::min(count, child[0].last_file_row + 1 - row);
    if (row < 0 || count <= 0)
        return 1;
    if (row == 0 && count == child[0].last_file_row + 1 && !add_end_row(true))
        return 0;
    if (locate_row(row) < 0)
        return fail_edit(child[0].segment_path);
    const int a = child[0].current_segment;
    if (locate_row(row + count) < 0)
        return fail_edit(child[0].segment_path);
    int b = child[0].current_segment;
    if (a == b)
        return delete_rows_in_segment(row, count);
    if (!commit_row_in_front(row))
        return 0;
    int32_t head = row + count - segment_table[b].first_row;
    if (b < child[0].segment_count - 1 && head == segment_rows(b)) {
        head = 0;
        b++;
    }
    const int done = row == segment_table[a].first_row ? delete_from_segment_start(row, count, a, b, head)
                                                       : delete_segment_by_segment(row, count, a, b);
    if (!done)
        return fail_edit(child[0].segment_path);
    return finish_deletion(row);
}

int drop_segment_head(int segment, int32_t count) {
    return count == 0 || rewrite_segment(segment, 0, count, 0);
}

void remove_segments(int first, int last) {
    for (int i = first; i <= last; i++) {
        if (segment_table[i].is_open)
            file_close(segment_table[i].handle);
    }
    std::copy(segment_table + last + 1, segment_table + child[0].segment_count, segment_table + first);
    const int gone = last - first + 1;
    for (int i = child[0].segment_count - gone; i < child[0].segment_count; i++)
        segment_table[i] = NO_SEGMENT;
    child[0].segment_count = static_cast<int16_t>(child[0].segment_count - gone);
    forget_cached_rows();
}

}  // namespace hexlane
