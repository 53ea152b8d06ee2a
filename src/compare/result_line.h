// result_line.h: one record of the results screen as text: the left row, a marker and the right row on one
// line. Main thread only.
#pragma once

#include "compare/compare.h"
#include "platform/surface.h"

namespace hexlane {

constexpr int32_t RESULT_ROW_BYTES = 80;  // what is shown of a row at most
constexpr int32_t MARKER_WIDTH = 6;       // characters
constexpr int32_t RESULT_LINE_SIZE = 256;

struct ResultLine {
    char kind;  // 0 when the record cannot be read
    char left[RESULT_ROW_BYTES];
    int32_t left_count;
    char right[RESULT_ROW_BYTES];
    int32_t right_count;
    char text[RESULT_LINE_SIZE];  // the whole line, without a NUL at its end
    int32_t length;
};

// Builds the line of a record, with `half_width` characters for each row. A record that is not there, or that
// cannot be read, gives a line of blanks.
void format_result_line(int64_t number, int32_t half_width, ResultLine* line);

// The colour of the marker, which stands behind the left row.
platform::Color marker_color(char kind, bool highlighted);

// The first place where the two rows of a modified record differ; -1 when they do not, as far as they are
// shown.
int32_t first_difference(const ResultLine& line);

}  // namespace hexlane
