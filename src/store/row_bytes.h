// row_bytes.h: where the bytes of a row stand, and a row's text with the bytes that no fetch shows. Main
// thread only.
#pragma once

#include "store/row_records.h"

#include <cstddef>
#include <cstdint>

namespace hexlane {

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

// Takes up to `size` bytes from the front of a span that has some. Gives their number; -1 when they cannot be
// read, and then the store is marked damaged.
[[nodiscard]] int32_t take_row_bytes(RowSpan* span, void* bytes, std::size_t size);

// Appends `text` and then the bytes of `rest` (nullptr for none) to the change file as one line and points
// the record of `row` at it. Gives 1; 0 on failure, and then table and change file are as before and nothing
// has been told.
[[nodiscard]] int store_row_text(int32_t row, const char* text, const RowSpan* rest);

// The file that failed in the last store_row_text that gave 0.
const char* failed_store_file();

}  // namespace hexlane
