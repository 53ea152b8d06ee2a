// byte_window.h: a file's bytes through one window in memory, for walks that go forward and look back a
// little. One shared implementation, over files.h: common/byte_window.cpp. Main thread only.
#pragma once

#include "platform/files.h"

#include <cstdint>

namespace hexlane::platform {

constexpr int32_t WINDOW_BYTES = 1 << 17;

struct ByteWindow {
    FileHandle file;
    int64_t size;   // bytes of the file that count; none is read behind them
    int64_t start;  // bytes[0, count) are the file's from here on
    int32_t count;
    bool failed;  // a read has failed or came short since the window was opened; what is missing reads as 0
    char bytes[WINDOW_BYTES];
};

void open_window(ByteWindow* window, FileHandle file, int64_t size);

// Moves the window so that it holds the byte at `offset`, which is below `size`. Bytes from `keep` (at most
// `offset`) on stay in it if they are there and leave room.
void move_window(ByteWindow* window, int64_t offset, int64_t keep);

// Where the bytes from `offset` stand in memory; `count` takes how many, at least 1 if offset is below
// `size`, else 0. Holds until the next call.
inline const char* window_at(ByteWindow* window, int64_t offset, int64_t keep, int32_t* count) {
    if (offset >= window->size) {
        *count = 0;
        return window->bytes;
    }
    if (offset < window->start || offset >= window->start + window->count)
        move_window(window, offset, keep);
    const int64_t at = offset - window->start;
    *count = static_cast<int32_t>(window->count - at);
    return window->bytes + at;
}

}  // namespace hexlane::platform
