// row_pair.h: the rows of a file one after the other, and whether a left and a right row are equal. For the
// engine. Main thread only.
#pragma once

#include "platform/byte_window.h"

#include <cstdint>

namespace hexlane {

// A row of a file, its line end included. Behind the last one: start is the file's size, length 0.
struct FileRow {
    int64_t start;
    int64_t length;
    uint64_t head;  // its first characters that count, at most 8: rows with other heads differ
};

// The row that begins at `start`. Bytes from `keep` on (at most `start`) will be looked at again.
FileRow row_from(platform::ByteWindow* window, int64_t start, int64_t keep, bool ignore_spaces);

// Whether two rows are equal by all their bytes; with `ignore_spaces` blanks and tabs do not count anywhere.
// A row that is not there equals none.
bool rows_equal(platform::ByteWindow* left_window, const FileRow& left, platform::ByteWindow* right_window,
                const FileRow& right, bool ignore_spaces);

// Whether a row is CR LF and nothing else that counts.
bool row_is_blank(platform::ByteWindow* window, const FileRow& row, bool ignore_spaces);

// How many rows stand in front of the first byte in which the two files differ, from a row start on in each:
// rows that are there whole in both windows and are not the last of a side. `ends` takes each row's end, in
// bytes behind the start, at most SAME_STRETCH of them.
constexpr int32_t SAME_STRETCH = 4096;  // bytes looked at
int32_t equal_rows_ahead(platform::ByteWindow* left_window, int64_t left, platform::ByteWindow* right_window,
                         int64_t right, int32_t ends[SAME_STRETCH]);

}  // namespace hexlane
