// code_page.cpp: the Windows-1252 table, and texts turned into its bytes and back. Only bytes 0x80 to 0x9F
// differ from Latin-1.

#include "platform/common/code_page.h"

#include "platform/text.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

constexpr int FIRST_SPECIAL = 0x80;
constexpr char32_t CONTROL_PICTURES = 0x2400;
constexpr char32_t DELETE_PICTURE = 0x2421;

// Bytes 0x80 to 0x9F.
constexpr char32_t SPECIAL[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
constexpr int SPECIAL_COUNT = sizeof(SPECIAL) / sizeof(SPECIAL[0]);

constexpr char32_t NO_CHARACTER = 0xFFFFFFFF;

// The code point at the front of *at, which moves behind it. NO_CHARACTER for a byte that begins none.
char32_t take_code_point(const char** at) {
    const auto lead = static_cast<unsigned char>(*(*at)++);
    if (lead < 0x80) {
        return lead;
    }
    const int following = lead < 0xC0 ? -1 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : -1;
    if (following < 0) {
        return NO_CHARACTER;
    }
    char32_t code_point = lead & (0x3Fu >> following);
    for (int i = 0; i < following; i++) {
        if ((static_cast<unsigned char>(**at) & 0xC0) != 0x80) {
            return NO_CHARACTER;
        }
        code_point = code_point << 6 | (static_cast<unsigned char>(*(*at)++) & 0x3Fu);
    }
    return code_point;
}

// UTF-8 of a code point below 0x10000. Gives the number of bytes.
std::size_t put_code_point(char utf8[3], char32_t code_point) {
    if (code_point < 0x80) {
        utf8[0] = static_cast<char>(code_point);
        return 1;
    }
    const auto tail = [code_point](int shift) {
        return static_cast<char>(0x80 | (code_point >> shift & 0x3F));
    };
    if (code_point < 0x800) {
        utf8[0] = static_cast<char>(0xC0 | code_point >> 6);
        utf8[1] = tail(0);
        return 2;
    }
    utf8[0] = static_cast<char>(0xE0 | code_point >> 12);
    utf8[1] = tail(6);
    utf8[2] = tail(0);
    return 3;
}

}  // namespace

int text_to_bytes(char* bytes, std::size_t size, const char* text) {
    std::size_t used = 0;
    bool whole = true;
    while (*text != '\0' && used + 1 < size) {
        const int byte = unicode_to_byte(take_code_point(&text));
        whole = whole && byte > 0;
        bytes[used++] = byte > 0 ? static_cast<char>(byte) : '?';
    }
    bytes[used] = '\0';
    return whole && *text == '\0' ? 1 : 0;
}

int bytes_to_text(char* text, std::size_t size, const char* bytes) {
    std::size_t used = 0;
    for (; *bytes != '\0'; bytes++) {
        const auto byte = static_cast<uint8_t>(*bytes);
        char utf8[3];
        const std::size_t length = put_code_point(utf8, byte < FIRST_SPECIAL ? byte : byte_to_unicode(byte));
        if (used + length >= size) {
            break;
        }
        std::copy_n(utf8, length, text + used);
        used += length;
    }
    text[used] = '\0';
    return *bytes == '\0' ? 1 : 0;
}

char32_t byte_to_unicode(uint8_t byte) {
    if (byte < 0x20) {
        return CONTROL_PICTURES + byte;
    }
    if (byte == 0x7F) {
        return DELETE_PICTURE;
    }
    if (byte >= FIRST_SPECIAL && byte < FIRST_SPECIAL + SPECIAL_COUNT) {
        return SPECIAL[byte - FIRST_SPECIAL];
    }
    return byte;
}

// A control stands for itself here; the pictures that show it are no text of its own.
int unicode_to_byte(char32_t code_point) {
    for (int i = 0; i < SPECIAL_COUNT; i++) {
        if (SPECIAL[i] == code_point) {
            return FIRST_SPECIAL + i;
        }
    }
    const bool in_gap = code_point >= FIRST_SPECIAL && code_point < FIRST_SPECIAL + SPECIAL_COUNT;
    return code_point <= 0xFF && !in_gap ? static_cast<int>(code_point) : -1;
}

}  // namespace hexlane::platform
