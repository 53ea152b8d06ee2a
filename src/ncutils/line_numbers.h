// line_numbers.h: the line number at the head of one row of text, given anew or taken away.
// Only the first characters count: an N further along a row is no line number. Pure: row text in, row text
// out; the standard library alone.
#pragma once

#include <cstdint>

namespace hexlane {

// What a renumbering carries from row to row.
struct Numbering {
    int32_t start;
    int16_t increment;
    int digits;     // shorter numbers get zeros in front, 0 to 9
    int32_t limit;  // a number above it begins again at `start`; 0 for no limit
    bool number_unnumbered;
    uint32_t line_number;  // the next one; at first `start`
};

enum class NumberedRow {
    LEFT_ALONE,
    NUMBERED,
    TOO_LONG,  // it would be numbered but does not fit; it has taken no number
};

// Writes `row` with the next line number to out[size] and moves on to the one behind it. `out` means
// something with NUMBERED alone.
NumberedRow renumber_row_text(Numbering* numbering, const char* row, char* out, int size);

// Takes the line number of `row` away, and the blanks and tabs behind it; a '/' in front stays. Unlike
// renumber_row_text it asks for no digit. The result, at most as long as `row`, goes to `out`.
void strip_row_text(const char* row, char* out);

}  // namespace hexlane
