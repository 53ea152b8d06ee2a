// row_records.h: the records of the rows in their segment files, and the window of them in memory. The rules
// that they keep are told in store/row_table.h. Main thread only.
#pragma once

#include "platform/files.h"
#include "shell/store_limits.h"

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

// One segment, without a file, and nothing in memory.
void reset_records();

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

// Between the two, records of rows that the table has may wait in memory; see row_records.cpp.
// end_record_batch writes them out and gives 1; 0 on failure, and then they wait on: `last_row` takes the
// last row that waits, path[PATH_SIZE] the file.
void begin_record_batch();
[[nodiscard]] int end_record_batch(int32_t* last_row, char* path);

// Drops the records that are kept in memory: segment files or row numbers have changed under them.
void drop_record_window();

}  // namespace hexlane
