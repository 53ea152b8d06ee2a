#include "platform/byte_window.h"

#include <algorithm>
#include <cstring>

namespace hexlane::platform {

void open_window(ByteWindow* window, FileHandle file, int64_t size) {
    window->file = file;
    window->size = size;
    window->start = 0;
    window->count = 0;
    window->failed = false;
}

void move_window(ByteWindow* window, int64_t offset, int64_t keep) {
    const int64_t end = window->start + window->count;
    const int64_t kept = end - keep;
    const bool keeps = offset == end && keep >= window->start && kept <= WINDOW_BYTES / 2;
    if (keeps && kept > 0)
        std::memmove(window->bytes, window->bytes + (keep - window->start), static_cast<std::size_t>(kept));
    window->start = keeps ? keep : offset;
    const int32_t held = keeps ? static_cast<int32_t>(kept) : 0;
    const int64_t from = window->start + held;
    const auto wanted = static_cast<int32_t>(std::min<int64_t>(WINDOW_BYTES - held, window->size - from));
    const int64_t got = std::max<int64_t>(
        file_read_at(window->file, from, window->bytes + held, static_cast<std::size_t>(wanted)), 0);
    if (got < wanted) {
        window->failed = true;
        std::memset(window->bytes + held + got, 0, static_cast<std::size_t>(wanted - got));
    }
    window->count = held + wanted;
}

}  // namespace hexlane::platform
