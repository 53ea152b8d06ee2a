// report.cpp: the records as lines of text.

#include "compare/report.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "platform/text.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int32_t ROW_BYTES = 255;   // what is taken of a row
constexpr int32_t PIECE = 35;        // characters of a row on one line
constexpr int32_t COLUMN = 36;       // characters that the last piece of a row is padded to
constexpr int32_t LEFT_PATH_AT = 2;  // columns of the first line
constexpr int32_t RIGHT_PATH_AT = 45;
constexpr int32_t BUFFER_BYTES = 1 << 16;

struct Marker {
    char kind;
    const char* text;
};
constexpr Marker MARKERS[] = {
    {SAME_ROWS, "<===> "}, {MODIFIED_ROWS, "<MOD> "}, {DELETED_ROW, "<-INS "}, {INSERTED_ROW, "DEL-> "}};
constexpr int32_t MARKER_WIDTH = 6;
constexpr const char* NO_MARKER = "      ";

struct Output {
    FileHandle file;
    int64_t position;
    int32_t held;
    bool failed;
    char bytes[BUFFER_BYTES];
};
Output output;

void flush_output() {
    const auto size = static_cast<std::size_t>(output.held);
    if (size > 0 && !output.failed && !file_write_at(output.file, output.position, output.bytes, size))
        output.failed = true;
    output.position += output.held;
    output.held = 0;
}

void put_bytes(const char* bytes, int32_t count) {
    if (output.held + count > BUFFER_BYTES)
        flush_output();
    std::copy_n(bytes, count, output.bytes + output.held);
    output.held += count;
}

void put_blanks(int32_t count) {
    for (int32_t i = 0; i < count; i++)
        put_bytes(" ", 1);
}

void put_line_end() {
    put_bytes("\r\n", 2);
}

// A row's text as it is taken off piece by piece.
struct Column {
    char text[ROW_BYTES];
    int32_t count;
    bool row_ended;  // the row's end was among the bytes taken
    int32_t pieces;  // 0 behind the side's last record
    bool shown;
    bool is_left;
};

void take_row(Column* column, const CompareSide& side, int64_t number, uint32_t offset, bool shown) {
    column->is_left = &side == &compare.left;
    column->shown = shown;
    column->count = 0;
    column->row_ended = true;
    column->pieces = 0;
    if (number > side.last_record)
        return;
    column->count = read_compared_row(side, offset, column->text, ROW_BYTES, &column->row_ended);
    column->pieces = std::max((column->count + PIECE - 1) / PIECE, 1);
}

// Piece `number` of the row. Full pieces take the left column whole; the last one is padded if the row's end
// is known.
void put_piece(const Column& column, int32_t number) {
    if (!column.shown || number >= column.pieces) {
        put_blanks(column.is_left ? COLUMN : 0);
        return;
    }
    const bool is_last = number == column.pieces - 1;
    const int32_t length = std::min(column.count - number * PIECE, PIECE);
    put_bytes(column.text + number * PIECE, length);
    if (!is_last)
        put_blanks(column.is_left ? COLUMN - PIECE : 0);
    else if (column.row_ended)
        put_blanks(COLUMN - length);
}

const char* marker_of(char kind) {
    const auto* found = std::find_if(std::begin(MARKERS), std::end(MARKERS),
                                     [kind](const Marker& marker) { return marker.kind == kind; });
    return found != std::end(MARKERS) ? found->text : NO_MARKER;
}

void put_record(int64_t number, const CompareRecord& record) {
    static Column left;
    static Column right;
    take_row(&left, compare.left, number, record.left_offset, record.kind != INSERTED_ROW);
    take_row(&right, compare.right, number, record.right_offset, record.kind != DELETED_ROW);
    const int32_t lines = std::max(left.pieces, right.pieces);
    for (int32_t line = 0; line < lines; line++) {
        put_piece(left, line);
        put_bytes(line == 0 ? marker_of(record.kind) : NO_MARKER, MARKER_WIDTH);
        put_piece(right, line);
        put_line_end();
    }
}

// The right path stands over the end of a left path that is too long.
void put_head() {
    char left[PATH_SIZE];
    char right[PATH_SIZE];
    text_to_bytes(left, sizeof left, compare.left.path);
    text_to_bytes(right, sizeof right, compare.right.path);
    const auto shown =
        static_cast<int32_t>(std::min<std::size_t>(std::strlen(left), RIGHT_PATH_AT - LEFT_PATH_AT));
    put_blanks(LEFT_PATH_AT);
    put_bytes(left, shown);
    put_blanks(RIGHT_PATH_AT - LEFT_PATH_AT - shown);
    put_bytes(right, static_cast<int32_t>(std::strlen(right)));
    put_line_end();
    put_line_end();
    put_line_end();
}

}  // namespace

int write_compare_report(FileHandle file, bool differences_only) {
    output.file = file;
    output.position = 0;
    output.held = 0;
    output.failed = false;
    put_head();
    CompareRecord record;
    for (int64_t number = 0; number <= compare.last_record && !output.failed; number++) {
        if (!load_record(number, &record))
            return 0;
        if (!differences_only || record.kind != SAME_ROWS)
            put_record(number, record);
    }
    flush_output();
    return !output.failed;
}

}  // namespace hexlane
