// text.cpp: copying, joining and comparing texts in buffers of fixed size.
// Texts from the system are UTF-8, so a cut falls between two characters; bytes that are no UTF-8 are cut
// wherever the buffer ends.

#include "platform/text.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace hexlane::platform {

namespace {

bool is_continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Bytes of the character that `lead` begins, 1 when it begins none.
std::size_t character_length(char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    if (byte >= 0xF0) {
        return byte < 0xF8 ? 4 : 1;
    }
    if (byte >= 0xE0) {
        return 3;
    }
    return byte >= 0xC0 ? 2 : 1;
}

// The longest length up to `room` at which `text`, which is longer than that, can be cut.
std::size_t cut_length(const char* text, std::size_t room) {
    std::size_t lead = room;
    while (lead > 0 && room - lead < 3 && is_continuation(text[lead])) {
        lead--;
    }
    return lead + character_length(text[lead]) > room ? lead : room;
}

}  // namespace

int copy_text(char* to, std::size_t size, const char* from) {
    if (size == 0) {
        return 0;
    }
    const std::size_t length = std::strlen(from);
    const bool fits = length < size;
    const std::size_t taken = fits ? length : cut_length(from, size - 1);
    std::memmove(to, from, taken);
    to[taken] = '\0';
    return fits ? 1 : 0;
}

int append_text(char* to, std::size_t size, const char* from) {
    const std::size_t used = strnlen(to, size);
    return used < size ? copy_text(to + used, size - used, from) : 0;
}

int format_text(char* to, std::size_t size, const char* format, ...) {
    if (size == 0) {
        return 0;
    }
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(to, size, format, arguments);
    va_end(arguments);
    if (length < 0) {
        to[0] = '\0';
        return 0;
    }
    if (static_cast<std::size_t>(length) < size) {
        return 1;
    }
    // What follows the cut is not known any more, so the last character is judged by its first byte.
    std::size_t end = size - 1;
    std::size_t lead = end;
    while (lead > 0 && end - lead < 4 && is_continuation(to[lead - 1])) {
        lead--;
    }
    if (lead > 0 && lead - 1 + character_length(to[lead - 1]) > end) {
        to[lead - 1] = '\0';
    }
    return 0;
}

int equal_ignoring_case(const char* left, const char* right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    while (*left != '\0' && lower(*left) == lower(*right)) {
        left++;
        right++;
    }
    return lower(*left) == lower(*right) ? 1 : 0;
}

const char* file_title_of(const char* path) {
    const char* slash = std::strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

}  // namespace hexlane::platform
