// little_endian.h: 16-bit numbers as they stand in files, without alignment, little-endian on any host.
#pragma once

#include <cstdint>

namespace hexlane {

struct LittleInt16 {
    uint8_t bytes[2];

    operator int16_t() const { return static_cast<int16_t>(bytes[0] | bytes[1] << 8); }
    LittleInt16& operator=(int value) {
        bytes[0] = static_cast<uint8_t>(value & 0xFF);
        bytes[1] = static_cast<uint8_t>(value >> 8 & 0xFF);
        return *this;
    }
};
static_assert(sizeof(LittleInt16) == 2 && alignof(LittleInt16) == 1);

}  // namespace hexlane
