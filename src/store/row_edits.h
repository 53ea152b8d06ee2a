// row_edits.h: putting rows in and taking rows out. Only the segment that a change touches is rewritten,
// through a work file; the invariants of row_table.h hold after each operation. pending_row must be -1 on
// entry. row_text is overwritten by split_row, join_rows, add_end_row and each deletion. When a file
// operation fails the table stays as it was before the step that failed, the user is told, and the operation
// gives 0. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// Whether the document may grow by so many rows (negative: it shrinks first). Gives 1; 0 when it would have
// more than MAX_ROWS, which has been told.
int room_for_rows(int32_t count);

// Puts `count` blank rows into the table in front of `row`; behind the last row if that row is empty or `row`
// lies behind it. Refused when there is no room_for_rows.
int insert_blank_rows(int32_t row, int32_t count);

// Breaks a row in two; sets `modified`. At column 0 a blank row comes in front; at or past the text's end a
// blank row comes behind.
int split_row(int32_t row, int32_t column);

// Appends row + 1 to `row`, whose text is row_text, when the result has at most ROW_EDIT_MAX characters and
// no unseen bytes of `row` would be moved; otherwise nothing changes. Gives 1 when joined.
int join_rows(int32_t row);

// Takes any range of rows out; the document keeps at least one row.
int delete_rows(int32_t row, int32_t count);

// The part of a deletion that changes the table, in one step that works or leaves it as it was: at most one
// segment is rewritten, and what else goes is passed over. It neither tells a failure nor looks at the rows
// on both sides, so it is for a caller that has stored the row in front, or takes out what came in just now.
int cut_rows(int32_t row, int32_t count);

int drop_segment_head(int segment, int32_t count);
void remove_segments(int first, int last);

// Appends an empty row behind the last one: always with `force`; otherwise only when the last row has text
// and the row before it did not end in a line end. Does not ask for room: a deletion passes the limit until
// its rows are out.
int add_end_row(bool force);
int add_end_row_after_join();

}  // namespace hexlane
