// row_record_format.h: a row's record as it stands in segment files and in the block index: 8 bytes,
// little-endian, files of them without a header.
//   offset 0, 4 bytes  position, unsigned
//   offset 4, 1 byte   origin letter
//   offset 5, 3 bytes  zero
#pragma once

#include "store/row_records.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace hexlane {

constexpr int ROW_RECORD_SIZE = 8;
static_assert(sizeof(uint64_t) == ROW_RECORD_SIZE);

// The record as one little-endian number, which the compiler stores in one step.
inline void put_row_record(uint8_t* bytes, uint32_t position, char origin) {
    uint64_t value = position | static_cast<uint64_t>(static_cast<uint8_t>(origin)) << 32;
    if constexpr (std::endian::native == std::endian::big)
        value = __builtin_bswap64(value);
    std::memcpy(bytes, &value, ROW_RECORD_SIZE);
}

inline RowRecord get_row_record(const uint8_t* bytes) {
    uint64_t value = 0;
    std::memcpy(&value, bytes, ROW_RECORD_SIZE);
    if constexpr (std::endian::native == std::endian::big)
        value = __builtin_bswap64(value);
    return {static_cast<uint32_t>(value), static_cast<char>(value >> 32 & 0xFF)};
}

}  // namespace hexlane
