// line_number_search.cpp: looking for the row that begins with a line number.

#include "search/matching.h"
#include "shell/child.h"
#include "store/row_bytes.h"
#include "store/row_table.h"

#include <algorithm>
#include <cstring>

namespace hexlane {

namespace {

// The decimal value of the digits behind an N. All values that are too large to be asked for are one.
struct LineNumber {
    static constexpr int64_t TOO_LARGE = 1000000000;
    int64_t value;
    bool any;
};

// Takes digits up to the first other character. Gives how many.
int32_t take_digits(const char* text, int32_t length, LineNumber* number) {
    int32_t taken = 0;
    while (taken < length && text[taken] >= '0' && text[taken] <= '9') {
        number->value = std::min<int64_t>(number->value * 10 + (text[taken] - '0'), LineNumber::TOO_LARGE);
        number->any = true;
        ++taken;
    }
    return taken;
}

// Digits that go on behind what a fetch shows of `row`. Gives 0 when they could not be read.
int take_unseen_digits(int32_t row, LineNumber* number) {
    RowSpan rest;
    if (!fetched_rest(row, &rest))
        return 0;
    while (rest.length > 0) {
        char piece[ROW_BUFFER_SIZE];
        const int32_t length = take_row_bytes(&rest, piece, sizeof piece);
        if (length < 0)
            return 0;
        if (take_digits(piece, length, number) < length)
            return 1;
    }
    return 1;
}

// Whether `row` begins with the line number; -1 when it could not be read.
int has_line_number(int32_t row, int64_t wanted) {
    if (!fetch_row(row))
        return -1;
    const char* text = child[0].row_text;
    if (text[0] != 'N' && text[0] != 'n')
        return 0;
    LineNumber number = {0, false};
    const auto length = static_cast<int32_t>(std::strlen(text));
    const bool goes_on = 1 + take_digits(text + 1, length - 1, &number) == ROW_FETCH_MAX && !row_had_lf;
    if (goes_on && !take_unseen_digits(row, &number))
        return -1;
    return number.any && number.value == wanted;
}

}  // namespace

int32_t find_line_number(int64_t number) {
    const int32_t end = program_end_row();
    for (int32_t row = 0; row < end; ++row) {
        const int answer = has_line_number(row, number);
        if (answer != 0)
            return answer > 0 ? row : LINE_UNREAD;
    }
    return LINE_MISSING;
}

}  // namespace hexlane
