// sides.cpp: the rows of the two files behind a finished compare.

#include <algorithm>
#include <cstring>

#include "compare/compare.h"
#include "compare/record_list.h"
#include "compare/sides_internal.h"

namespace hexlane {

using namespace platform;

ByteWindow left_window;
ByteWindow right_window;

namespace {

ByteWindow* window_of(const CompareSide& side) {
    return &side == &compare.left ? &left_window : &right_window;
}

// Bytes from `offset` on as they are in the window, or afresh from a file that has failed once: then only
// bytes that are really there count. Gives their number, -1 when some are missing.
int32_t read_side(const CompareSide& side, int64_t offset, char* bytes, int32_t size) {
    ByteWindow* window = window_of(side);
    const auto wanted = static_cast<int32_t>(std::min<int64_t>(size, side.size - offset));
    for (int32_t done = 0; done < wanted && !window->failed;) {
        int32_t held = 0;
        const char* from = window_at(window, offset + done, offset, &held);
        held = std::min(held, wanted - done);
        std::memcpy(bytes + done, from, static_cast<std::size_t>(held));
        done += held;
    }
    if (!window->failed)
        return wanted;
    const int64_t got = file_read_at(side.file, offset, bytes, static_cast<std::size_t>(wanted));
    return got == wanted ? wanted : -1;
}

bool has_changed(const CompareSide& side) {
    FileStamp now;
    return window_of(side)->failed || !file_stamp(side.file, &now) || now.size != side.stamp.size ||
           now.modified_ns != side.stamp.modified_ns;
}

void close_side(CompareSide* side) {
    if (side->file != NO_FILE)
        file_close(side->file);
    side->file = NO_FILE;
}

}  // namespace

int32_t read_compared_row(const CompareSide& side, uint32_t offset, char* text, int32_t size, bool* ended) {
    *ended = false;
    if (side.file == NO_FILE || offset >= side.size) {
        *ended = true;
        return 0;
    }
    const int32_t count = std::max(read_side(side, offset, text, size), 0);
    const char* end =
        std::find_if(text, text + count, [](char byte) { return byte == '\r' || byte == '\n'; });
    *ended = end != text + count;
    return static_cast<int32_t>(end - text);
}

const char* compare_was_disturbed() {
    for (const CompareSide* side : {&compare.left, &compare.right}) {
        if (side->file != NO_FILE && has_changed(*side))
            return side->path;
    }
    return record_list_is_damaged() ? record_list_path() : nullptr;
}

void close_compare() {
    close_side(&compare.right);
    close_side(&compare.left);
    close_record_list();
}

}  // namespace hexlane
