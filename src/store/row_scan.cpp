// row_scan.cpp: 64 bytes at a time as a bit mask of row ends; the scan runs over every byte of a file that is
// opened, and rows are short, so both the search and the emission of offsets count.

#include "store/row_scan.h"

#include <bit>
#include <cstring>

namespace hexlane {

namespace {

constexpr int CHUNK = 64;  // bytes, one bit each in the mask

#ifdef __SSE2__

using Vector = char __attribute__((vector_size(16)));

uint64_t row_end_mask(const uint8_t* data) {
    uint64_t mask = 0;
    for (int part = 0; part < CHUNK / 16; part++) {
        Vector bytes;
        std::memcpy(&bytes, data + part * 16, 16);
        const Vector ends = reinterpret_cast<Vector>((bytes == '\n') | (bytes == '\0'));
        const auto bits = static_cast<uint16_t>(__builtin_ia32_pmovmskb128(ends));
        mask |= static_cast<uint64_t>(bits) << (part * 16);
    }
    return mask;
}

#else

// One 0x80 in each byte of the word that is zero, exactly.
uint64_t zero_bytes(uint64_t word) {
    constexpr uint64_t LOW = 0x7F7F7F7F7F7F7F7F;
    return ~(((word & LOW) + LOW) | word | LOW);
}

uint64_t row_end_mask(const uint8_t* data) {
    uint64_t mask = 0;
    for (int part = 0; part < CHUNK / 8; part++) {
        uint64_t word = 0;
        std::memcpy(&word, data + part * 8, 8);
        if constexpr (std::endian::native == std::endian::big)
            word = __builtin_bswap64(word);
        const uint64_t ends = zero_bytes(word) | zero_bytes(word ^ 0x0A0A0A0A0A0A0A0A);
        // Gathers the eight high bits into one byte.
        mask |= ((ends >> 7) * 0x0102040810204080 >> 56) << (part * 8);
    }
    return mask;
}

#endif

}  // namespace

int32_t find_row_ends(const uint8_t* data, int32_t length, int32_t* ends) {
    int32_t count = 0;
    int32_t at = 0;
    for (; at + CHUNK <= length; at += CHUNK) {
        for (uint64_t mask = row_end_mask(data + at); mask != 0; mask &= mask - 1)
            ends[count++] = at + std::countr_zero(mask);
    }
    for (; at < length; at++) {
        if (data[at] == '\n' || data[at] == '\0')
            ends[count++] = at;
    }
    return count;
}

}  // namespace hexlane
