#include "compare/row_pair.h"

#include <algorithm>
#include <cstring>

#include "store/row_scan.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int HEAD_BYTES = 8;

bool is_space(char byte) {
    return byte == ' ' || byte == '\t';
}

// Takes a row's bytes one by one, whatever its length.
struct RowReader {
    ByteWindow* window;
    int64_t at;
    int64_t end;
    const char* next = nullptr;
    int32_t held = 0;

    // The next byte, -1 behind the row.
    int take() {
        if (held == 0) {
            if (at >= end)
                return -1;
            next = window_at(window, at, at, &held);
            held = static_cast<int32_t>(std::min<int64_t>(held, end - at));
            at += held;
        }
        held--;
        return static_cast<unsigned char>(*next++);
    }

    // The next byte that is no blank and no tab.
    int take_solid() {
        int byte = take();
        while (byte >= 0 && is_space(static_cast<char>(byte)))
            byte = take();
        return byte;
    }

    int take(bool ignore_spaces) { return ignore_spaces ? take_solid() : take(); }
};

RowReader reader_of(ByteWindow* window, const FileRow& row) {
    return {window, row.start, row.start + row.length};
}

// Behind the row's LF, or the end of the file.
int64_t end_of_row(ByteWindow* window, int64_t start, int64_t keep) {
    int64_t at = start;
    while (at < window->size) {
        int32_t held = 0;
        const char* bytes = window_at(window, at, keep, &held);
        const auto* lf = static_cast<const char*>(std::memchr(bytes, '\n', static_cast<std::size_t>(held)));
        if (lf != nullptr)
            return at + (lf - bytes) + 1;
        at += held;
    }
    return at;
}

uint64_t head_of(ByteWindow* window, const FileRow& row, bool ignore_spaces) {
    RowReader reader = reader_of(window, row);
    uint64_t head = 0;
    for (int i = 0; i < HEAD_BYTES; i++) {
        const int byte = reader.take(ignore_spaces);
        head = head << 8 | static_cast<uint64_t>(std::max(byte, 0));
    }
    return head;
}

bool bytes_equal(ByteWindow* left_window, int64_t left, ByteWindow* right_window, int64_t right,
                 int64_t length) {
    while (length > 0) {
        int32_t left_held = 0;
        int32_t right_held = 0;
        const char* left_bytes = window_at(left_window, left, left, &left_held);
        const char* right_bytes = window_at(right_window, right, right, &right_held);
        const int64_t now = std::min<int64_t>({left_held, right_held, length});
        if (std::memcmp(left_bytes, right_bytes, static_cast<std::size_t>(now)) != 0)
            return false;
        left += now;
        right += now;
        length -= now;
    }
    return true;
}

// Bytes that are equal from the front on.
int32_t common_length(const char* left, const char* right, int32_t length) {
    if (std::memcmp(left, right, static_cast<std::size_t>(length)) == 0)
        return length;
    int32_t at = 0;
    uint64_t left_word = 0;
    uint64_t right_word = 0;
    while (at + 8 <= length) {
        std::memcpy(&left_word, left + at, 8);
        std::memcpy(&right_word, right + at, 8);
        if (left_word != right_word)
            break;
        at += 8;
    }
    while (at < length && left[at] == right[at])
        at++;
    return at;
}

}  // namespace

FileRow row_from(ByteWindow* window, int64_t start, int64_t keep, bool ignore_spaces) {
    FileRow row = {start, end_of_row(window, start, keep) - start, 0};
    row.head = head_of(window, row, ignore_spaces);
    return row;
}

bool rows_equal(ByteWindow* left_window, const FileRow& left, ByteWindow* right_window, const FileRow& right,
                bool ignore_spaces) {
    if (left.head != right.head || left.length == 0 || right.length == 0)
        return false;
    if (!ignore_spaces)
        return left.length == right.length &&
               bytes_equal(left_window, left.start, right_window, right.start, left.length);
    RowReader left_reader = reader_of(left_window, left);
    RowReader right_reader = reader_of(right_window, right);
    for (;;) {
        const int byte = left_reader.take_solid();
        if (byte != right_reader.take_solid())
            return false;
        if (byte < 0)
            return true;
    }
}

bool row_is_blank(ByteWindow* window, const FileRow& row, bool ignore_spaces) {
    RowReader reader = reader_of(window, row);
    const int first = reader.take(ignore_spaces);
    return first == '\r' && reader.take() == '\n';
}

int32_t equal_rows_ahead(ByteWindow* left_window, int64_t left, ByteWindow* right_window, int64_t right,
                         int32_t ends[SAME_STRETCH]) {
    int32_t left_held = 0;
    int32_t right_held = 0;
    const char* left_bytes = window_at(left_window, left, left, &left_held);
    const char* right_bytes = window_at(right_window, right, right, &right_held);
    // The last byte of a side belongs to its last row.
    const int64_t room = std::min<int64_t>(
        {left_held, right_held, SAME_STRETCH, left_window->size - left - 1, right_window->size - right - 1});
    if (room <= 0)
        return 0;
    const int32_t equal = common_length(left_bytes, right_bytes, static_cast<int32_t>(room));
    const int32_t found = find_row_ends(reinterpret_cast<const uint8_t*>(left_bytes), equal, ends);
    int32_t rows = 0;
    for (int32_t i = 0; i < found; i++) {  // the search stops at NULs too
        if (left_bytes[ends[i]] == '\n')
            ends[rows++] = ends[i] + 1;
    }
    return rows;
}

}  // namespace hexlane
