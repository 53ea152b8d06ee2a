// code_page.cpp: the Windows-1252 table. Only bytes 0x80 to 0x9F differ from Latin-1.

#include "platform/common/code_page.h"

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

}  // namespace

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
