#include "compare/result_line.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace hexlane {

using platform::Color;

namespace {

constexpr Color rgb(int red, int green, int blue) {
    return static_cast<Color>(red | green << 8 | blue << 16);
}

struct Marker {
    char kind;
    const char* text;
    Color ordinary;
    Color highlighted;
    bool shows_left;
    bool shows_right;
};

// What only the left file has is an insertion to whoever looks at it: it is the file that is being edited.
constexpr Marker MARKERS[] = {
    {SAME_ROWS, " <==> ", rgb(0, 0, 255), rgb(0, 255, 255), true, true},
    {MODIFIED_ROWS, " MOD  ", rgb(0, 200, 0), rgb(0, 255, 0), true, true},
    {DELETED_ROW, " <INS ", rgb(255, 0, 0), rgb(255, 0, 0), true, false},
    {INSERTED_ROW, " DEL> ", rgb(200, 0, 200), rgb(255, 0, 255), false, true},
    {0, "      ", platform::BLACK, platform::WHITE, false, false},
};

const Marker& marker_of(char kind) {
    return *std::find_if(std::begin(MARKERS), std::end(MARKERS) - 1,
                         [kind](const Marker& marker) { return marker.kind == kind; });
}

int32_t take_row(const CompareSide& side, uint32_t offset, char text[RESULT_ROW_BYTES]) {
    bool ended = false;
    return read_compared_row(side, offset, text, RESULT_ROW_BYTES, &ended);
}

}  // namespace

void format_result_line(int64_t number, int32_t half_width, ResultLine* line) {
    CompareRecord record;
    load_record(number, &record);
    const Marker& marker = marker_of(record.kind);
    line->kind = marker.kind;
    line->left_count = marker.shows_left ? take_row(compare.left, record.left_offset, line->left) : 0;
    line->right_count = marker.shows_right ? take_row(compare.right, record.right_offset, line->right) : 0;
    line->length = std::min(2 * half_width + MARKER_WIDTH, RESULT_LINE_SIZE);
    std::memset(line->text, ' ', static_cast<std::size_t>(line->length));
    std::copy_n(line->left, std::min(line->left_count, half_width), line->text);
    std::copy_n(marker.text, MARKER_WIDTH, line->text + half_width);
    std::copy_n(line->right, std::min(line->right_count, half_width), line->text + half_width + MARKER_WIDTH);
}

Color marker_color(char kind, bool highlighted) {
    const Marker& marker = marker_of(kind);
    return highlighted ? marker.highlighted : marker.ordinary;
}

int32_t first_difference(const ResultLine& line) {
    const int32_t shorter = std::min(line.left_count, line.right_count);
    const auto at =
        static_cast<int32_t>(std::mismatch(line.left, line.left + shorter, line.right).first - line.left);
    return at < std::max(line.left_count, line.right_count) ? at : -1;
}

}  // namespace hexlane
