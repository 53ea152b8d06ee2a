// segment_rewrite.h: rewriting one segment file through a work file: the one way in which records come into
// the middle of the table or leave it. Private to row_edits.cpp, row_delete.cpp and
// cut_file.cpp. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// Replaces the file of `segment` by: its records before `index`, then `blanks` blank records, then those
// behind `index` + `skipped`. first_row values and last_file_row are the caller's. Gives 1; 0 on failure, and
// then the segment is as it was.
[[nodiscard]] int rewrite_segment(int segment, int32_t index, int32_t skipped, int32_t blanks);

// Adds `change` to first_row of every segment behind `segment`, and to last_file_row.
void shift_rows_behind(int segment, int32_t change);

// Appends `count` blank records to the last segment's file. Gives 1; 0 on failure, and then nothing has
// changed.
[[nodiscard]] int append_blank_records(int32_t count);

}  // namespace hexlane
