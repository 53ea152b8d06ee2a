#include "dnc/crc32.h"

namespace hexlane {

namespace {

constexpr int STRIDE = 16;  // bytes taken at a time
constexpr uint32_t POLYNOMIAL = 0xEDB88320;

// entries[k][byte]: what `byte` with k zero bytes behind it brings to the checksum. The checksum is linear,
// so a stride's is the sum of what its bytes bring, looked up without waiting for one another.
struct Table {
    uint32_t entries[STRIDE][256];
};

constexpr Table make_table() {
    Table table = {};
    for (uint32_t byte = 0; byte < 256; byte++) {
        uint32_t value = byte;
        for (int bit = 0; bit < 8; bit++)
            value = (value & 1) != 0 ? value >> 1 ^ POLYNOMIAL : value >> 1;
        table.entries[0][byte] = value;
    }
    for (int zeros = 1; zeros < STRIDE; zeros++) {
        for (int byte = 0; byte < 256; byte++) {
            const uint32_t shorter = table.entries[zeros - 1][byte];
            table.entries[zeros][byte] = shorter >> 8 ^ table.entries[0][shorter & 0xFF];
        }
    }
    return table;
}

constexpr Table TABLE = make_table();

uint32_t add_stride(uint32_t crc, const uint8_t* bytes) {
    uint32_t sum = 0;
    for (int i = 0; i < STRIDE; i++) {
        const uint32_t before = i < 4 ? crc >> 8 * i & 0xFF : 0;
        sum ^= TABLE.entries[STRIDE - 1 - i][before ^ bytes[i]];
    }
    return sum;
}

}  // namespace

uint32_t crc32(uint32_t crc, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    crc = ~crc;
    for (; size >= STRIDE; size -= STRIDE, bytes += STRIDE)
        crc = add_stride(crc, bytes);
    for (; size > 0; size--, bytes++)
        crc = TABLE.entries[0][(crc ^ *bytes) & 0xFF] ^ crc >> 8;
    return ~crc;
}

}  // namespace hexlane
