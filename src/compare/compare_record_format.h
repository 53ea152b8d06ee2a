// compare_record_format.h: one record of the compare's temporary file: 9 bytes, integers little-endian.
#pragma once

#include "compare/compare.h"

#include <cstring>

namespace hexlane {

constexpr int COMPARE_RECORD_BYTES = 9;
constexpr int COMPARE_KIND_AT = 0;   // 1 byte, an ASCII letter
constexpr int COMPARE_LEFT_AT = 1;   // 4 bytes
constexpr int COMPARE_RIGHT_AT = 5;  // 4 bytes
static_assert(COMPARE_RIGHT_AT + 4 == COMPARE_RECORD_BYTES);

// The file begins with this many zero bytes, which the records then overwrite: record COMPARE_MEMORY_RECORDS
// stands at its first byte.
constexpr int COMPARE_FILE_BLANKS = 225;

inline void put_little_endian(char* to, uint32_t number) {
    const unsigned char bytes[4] = {
        static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8),
        static_cast<unsigned char>(number >> 16), static_cast<unsigned char>(number >> 24)};
    std::memcpy(to, bytes, sizeof bytes);
}

inline uint32_t take_little_endian(const char* from) {
    unsigned char bytes[4];
    std::memcpy(bytes, from, sizeof bytes);
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8 | static_cast<uint32_t>(bytes[2]) << 16 |
           static_cast<uint32_t>(bytes[3]) << 24;
}

inline void put_record(char* to, const CompareRecord& record) {
    to[COMPARE_KIND_AT] = record.kind;
    put_little_endian(to + COMPARE_LEFT_AT, record.left_offset);
    put_little_endian(to + COMPARE_RIGHT_AT, record.right_offset);
}

inline CompareRecord take_record(const char* from) {
    return {from[COMPARE_KIND_AT], take_little_endian(from + COMPARE_LEFT_AT),
            take_little_endian(from + COMPARE_RIGHT_AT)};
}

}  // namespace hexlane
