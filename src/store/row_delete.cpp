// row_delete.cpp: taking rows out, inside one segment and across many.
//
// The row in front of a gap is committed before the records behind it go: as a change row it ends the run of
// unchanged rows there, so that a save does not bring the deleted bytes back. Committing first means that a
// deletion that fails afterwards has done no harm.

#include <algorithm>

#include "platform/files.h"
#include "shell/child.h"
#include "store/row_edits.h"
#include "store/row_records.h"
#include "store/row_table.h"
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

// Takes rows out that all lie in `segment`, from its record `index` on.
int cut_segment(int segment, int32_t index, int32_t count) {
    if (!rewrite_segment(segment, index, count, 0))
        return 0;
    shift_rows_behind(segment, -count);
    return 1;
}

}  // namespace

int cut_rows(int32_t row, int32_t count) {
    if (locate_row(row) < 0)
        return 0;
    const int a = child[0].current_segment;
    if (locate_row(row + count) < 0)
        return 0;
    const int b = child[0].current_segment;
    if (a == b)
        return cut_segment(a, row - segment_table[a].first_row, count);
    if (!drop_segment_head(b, row + count - segment_table[b].first_row))
        return 0;
    // From here on nothing can fail: the records between stay in their files, and the table passes over them.
    const int emptied = row == segment_table[a].first_row ? a : a + 1;
    for (int segment = emptied; segment <= b; segment++)
        segment_table[segment].first_row = row;
    shift_rows_behind(b, -count);
    if (emptied == a) {
        remove_segments(a, b - 1);
        child[0].current_segment = static_cast<int16_t>(a);
    }
    return 1;
}

int delete_rows(int32_t row, int32_t count) {
    count = std::min(count, child[0].last_file_row + 1 - row);
    if (row < 0 || count <= 0)
        return 1;
    const bool all = row == 0 && count == child[0].last_file_row + 1;
    if ((all && !add_end_row(true)) || !commit_row_in_front(row))
        return 0;
    if (!cut_rows(row, count)) {
        fail_edit(child[0].segment_path);
        if (all)
            set_last_file_row(child[0].last_file_row - 1);
        forget_cached_rows();
        return 0;
    }
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
