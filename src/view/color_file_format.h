// color_file_format.h: the colour file ZOLT.INI, binary whatever its name says. Little-endian on any host, no
// header and no version: 28 slots of 8 bytes, then reserved bytes that are kept as they were read.
//
//   offset  width  field
//        0  28*8   the slots in order, each:
//                  +0  4  colour, 0x00BBGGRR
//                  +4  2  the numbers behind the letter take its colour too (0 or not)
//                  +6  2  unused
//      224  2000   reserved
#pragma once

#include "shell/child.h"

#include <cstdint>

namespace hexlane {

constexpr int COLOR_FILE_SIZE = 2224;
constexpr int COLOR_SLOT_SIZE = 8;
constexpr int COLOR_OFFSET = 0;
constexpr int INCLUDE_NUMBERS_OFFSET = 4;
constexpr int COLOR_UNUSED_OFFSET = 6;
constexpr int COLOR_RESERVED_OFFSET = 224;

static_assert(COLOR_UNUSED_OFFSET + 2 == COLOR_SLOT_SIZE);
static_assert(COLOR_SLOTS * COLOR_SLOT_SIZE == COLOR_RESERVED_OFFSET);
static_assert(COLOR_RESERVED_OFFSET + 2000 == COLOR_FILE_SIZE);

// One file in memory.
struct ColorFileImage {
    uint8_t bytes[COLOR_FILE_SIZE];
};

// The slot `slot` of a file, taken out of its bytes or put into them.
inline ColorEntry color_slot_from(const ColorFileImage& image, int slot) {
    const uint8_t* at = image.bytes + slot * COLOR_SLOT_SIZE;
    const auto byte_at = [at](int offset) { return static_cast<uint32_t>(at[offset]); };
    const auto word_at = [&](int offset) {
        return static_cast<int16_t>(byte_at(offset) | byte_at(offset + 1) << 8);
    };
    return {byte_at(COLOR_OFFSET) | byte_at(COLOR_OFFSET + 1) << 8 | byte_at(COLOR_OFFSET + 2) << 16 |
                byte_at(COLOR_OFFSET + 3) << 24,
            word_at(INCLUDE_NUMBERS_OFFSET), word_at(COLOR_UNUSED_OFFSET)};
}

inline void color_slot_into(ColorFileImage* image, int slot, const ColorEntry& entry) {
    uint8_t* at = image->bytes + slot * COLOR_SLOT_SIZE;
    const auto put = [at](int offset, int width, uint32_t value) {
        for (int i = 0; i < width; ++i)
            at[offset + i] = static_cast<uint8_t>(value >> (8 * i));
    };
    put(COLOR_OFFSET, 4, entry.color);
    put(INCLUDE_NUMBERS_OFFSET, 2, static_cast<uint16_t>(entry.include_numbers));
    put(COLOR_UNUSED_OFFSET, 2, static_cast<uint16_t>(entry.unused));
}

}  // namespace hexlane
