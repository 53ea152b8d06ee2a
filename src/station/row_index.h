// row_index.h: byte offsets of the rows of a file on disk, for the start point screen: the first
// ROW_TABLE_SIZE in memory, the rest in a temporary file. A row begins behind every LF and every NUL. Main
// thread only.
//
// The temporary file, temp_prefix and "idx.twr" in temp_dir, is an array of 32-bit little-endian offsets
// without a header: entry k is the offset of row ROW_TABLE_SIZE + k. It exists only for longer files, while
// the index is open.
#pragma once

#include <cstdint>

namespace hexlane {

constexpr int32_t ROW_TABLE_SIZE = 100000;
constexpr int ROW_TEXT_LIMIT = 80;  // bytes of a row that the screen shows

// Opens the file and builds its index. Gives 1; 0 when it cannot be read or the temporary file cannot be
// written.
int open_row_index(const char* path);

// Closes the file and deletes the temporary one.
void close_row_index();

// Number of line ends: rows 0 to row_count() - 1 have one, and row row_count() is what stands behind the
// last.
int32_t row_count();

// The place of row `row` (0 to row_count()) in the file; -1 when it cannot be told.
int64_t row_offset(int32_t row);

// The first bytes of a row, up to its line end, into text[ROW_TEXT_LIMIT + 1]; empty for a row that is gone.
// Both this and row_offset read many rows at once.
void read_row_text(int32_t row, char* text);

// Drops what has been read, so that the next read sees the file as it is now. For each drawing and search.
void look_at_file_again();

// The place behind the end of row `row`, the end of the file as it is now for the last; -1 when it cannot be
// told.
int64_t row_end(int32_t row);

// Whether a row begins at `offset` in the file that `path` names now: it may have been replaced or cut.
bool row_is_there(const char* path, int64_t offset);

}  // namespace hexlane
