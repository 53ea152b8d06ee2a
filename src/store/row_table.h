// row_table.h: the document as a table on disk of 8-byte records; reading and storing the text of one row.
//
// A row's record says where its text stands: in the active file as it was opened ('O'), in the change file to
// which every edited row is appended ('C'), or nowhere ('B', a blank row). Records lie in segments of files
// in temp_dir, one of which is open at a time: a load writes all its segments into one file, and a segment
// that is rewritten moves to a file of its own. The active file is never written here.
//
// Invariants, whenever no operation of the store is running:
//   1. first_row of each segment is the sum of the row counts of the segments before it; that of segment 0
//      is 0.
//   2. An 'O' row whose successor in the table is 'O' too is followed by that successor in the file.
//   3. A text row of origin 'O' is never the last row.
//   4. Rows are numbered from 0 to last_file_row; there is always at least one.
//   5. The bytes of a row that row_text does not show (behind ROW_FETCH_MAX characters, or behind a 0x1A)
//      stay with the row: each commit carries them along.
//   6. While unsaved_row is set no record changes.
//   7. Segments that share a file lie in it in the order of the table, so that nothing that is in use stands
//      behind the last one: the table's last segment may grow in place.
//
// Relies on platform/files.h, platform/text_stream.h, shell/child.h, shell/directories.h. Main thread only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace hexlane {

struct RowSpan;  // store/row_bytes.h

// Empties the table for a new document: one segment, without a file.
void reset_store();

// Brings row `row` into row_text, without its line end, at most ROW_FETCH_MAX characters, and sets row_origin
// and row_had_lf. For a row past last_file_row: empty text, row_origin as it was.
// Gives 1; 0 when the row could not be read, and then row_text is empty and the store is marked damaged.
int fetch_row(int32_t row);

// Stores row_text as the text of `row`, its unseen bytes carried along, and leaves row_text, row_origin and
// `modified` as they are. Gives 1; 0 on failure: then the text is kept in unsaved_row, which fetch_row
// honours, and the user is told from the message loop.
int commit_row(int32_t row);

// Around the commits of a long run over many rows, which then cost no system call each: the records of the
// rows may wait in memory, where every reader of the store sees them. Between the two no row is put in or
// taken out and no segment file is read or written past read_record and write_record. end_row_batch writes
// out what waits and gives 1; 0 on failure: nothing is lost, one row has become the unsaved one, and the user
// is told from the message loop.
void begin_row_batch();
int end_row_batch();

// Commits the pending row, if there is one. If it is the last row and has text, a new end row is put behind
// it. Gives 1, or 0 when the commit failed (pending_row is -1 in both cases).
int commit_pending();

// The same without the end row: for Enter, whose split makes the row.
int commit_pending_in_place();

// Whether a row holds no bytes but its line end. Disturbs neither row_text nor its flags. A row that cannot
// be read counts as not empty.
bool row_is_empty(int32_t row);

// The row behind the last one that belongs to the program: the end row, or the row behind it when a deletion
// has made a row with text the last one.
int32_t program_end_row();

// The part of `row` that row_text does not show; the last fetch or commit has brought the row. Length 0 for
// most rows, and then at no cost. Gives 1; 0 when it cannot be read: then the store is marked damaged.
[[nodiscard]] int fetched_rest(int32_t row, RowSpan* rest);

// Sets last_file_row and with it the range of the scroll bar.
void set_last_file_row(int32_t row);

// Tells the table that segment files or row numbers have changed under it: drops the records kept in memory
// and what is known of the row in row_text.
void forget_cached_rows();

// Closes the document's streams and segments; deletes nothing. file_open = 0, unsaved_row is cleared.
void close_document();

}  // namespace hexlane
