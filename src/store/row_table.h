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

#include "platform/files.h"
#include "shell/store_limits.h"

#include <cstddef>
#include <cstdint>

namespace hexlane {

constexpr char ORIGIN_FILE = 'O';
constexpr char ORIGIN_CHANGE = 'C';
constexpr char ORIGIN_BLANK = 'B';

// A record in memory; on disk 8 bytes, little-endian (store/row_record_format.h).
struct RowRecord {
    uint32_t position;  // byte offset of the row's first byte in the file that origin names; 0 for 'B'
    char origin;
};

struct SegmentEntry {
    int16_t is_open;              // this segment's file is the open one
    platform::FileHandle handle;  // valid while is_open is set
    int32_t first_row;            // number of the segment's first row
    char file_name[16];           // without folder; empty until the segment is first opened
    int16_t shares_file;          // made by the load: all segments of a load lie in one file, in table order
    int64_t base;                 // bytes: where its records begin in that file
};
constexpr SegmentEntry NO_SEGMENT = {0, platform::NO_FILE, 0, "", 0, 0};

// The run; wiped by reset_store.
extern SegmentEntry segment_table[MAX_SEGMENTS];

// Empties the table for a new document: one segment, without a file.
void reset_store();

// Chooses and opens the segment that holds `row` (the last one for a row past the end). Gives the byte offset
// of the row's record in that segment's file, or -1 when the file cannot be opened.
int64_t locate_row(int32_t row);

// Makes current_segment the only open one; with `create` its file is made empty. Gives 1, or 0 on failure.
int open_segment(bool create);

// Names the current segment if it has no name, and fills segment_path.
void build_segment_path();

// Reads or writes the record of a row. Give 1, or 0 on failure. write_record accepts last_file_row + 1: the
// write then extends the last segment.
[[nodiscard]] int read_record(int32_t row, RowRecord* record);
[[nodiscard]] int write_record(int32_t row, const RowRecord& record);

// Rows that segment `segment` holds.
int32_t segment_rows(int segment);

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

// Where a row's bytes stand: `length` bytes of `origin`'s file from `position`, without the line end.
struct RowSpan {
    char origin;
    int64_t position;
    int64_t length;
    int had_line_end;  // '\n' or 0 for the byte that ends the row, -1 when the file ends first
    int64_t next;      // position behind the row end
};
// Gives 1, or 0 when the row cannot be read.
[[nodiscard]] int row_span(const RowRecord& record, RowSpan* span);

// The part of a row behind its first `shown` bytes (SHOWN_BY_FETCH: behind what a fetch shows); length 0 for
// most rows. Gives 1, or 0 when the row cannot be read.
constexpr int32_t SHOWN_BY_FETCH = -1;
[[nodiscard]] int unseen_rest(const RowRecord& record, int32_t shown, RowSpan* rest);

// The part of `row` that row_text does not show; the last fetch or commit has brought the row. Length 0 for
// most rows, and then at no cost. Gives 1; 0 when it cannot be read: then the store is marked damaged.
[[nodiscard]] int fetched_rest(int32_t row, RowSpan* rest);

// Takes up to `size` bytes from the front of a span that has some. Gives their number; -1 when they cannot be
// read, and then the store is marked damaged.
[[nodiscard]] int32_t take_row_bytes(RowSpan* span, void* bytes, std::size_t size);

// Appends `text` and then the bytes of `rest` (nullptr for none) to the change file as one line and points
// the record of `row` at it. Gives 1; 0 on failure, and then table and change file are as before and nothing
// has been told.
[[nodiscard]] int store_row_text(int32_t row, const char* text, const RowSpan* rest);

// The file that failed in the last store_row_text that gave 0.
const char* failed_store_file();

// Sets last_file_row and with it the range of the scroll bar.
void set_last_file_row(int32_t row);

// Tells the table that segment files or row numbers have changed under it: drops the records kept in memory
// and what is known of the row in row_text.
void forget_cached_rows();

// Closes the document's streams and segments; deletes nothing. file_open = 0, unsaved_row is cleared.
void close_document();

}  // namespace hexlane
