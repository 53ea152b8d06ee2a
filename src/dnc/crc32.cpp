#include "dnc/crc32.h"

namespace hexlane {

namespace {

struct Table {
    uint32_t entries[256];
};

constexpr Table make_table() {
    Table table = {};
    for (uint32_t byte = 0; byte < 256; byte++) {
        uint32_t value = byte;
        for (int bit = 0; bit < 8; bit++)
            value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320 : value >> 1;
        table.entries[byte] = value;
    }
    return table;
}

constexpr Table TABLE = make_table();

}  // namespace

uint32_t crc32(uint32_t crc, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    crc = ~crc;
    for (std::size_t i = 0; i < size; i++)
        crc = TABLE.entries[(crc ^ bytes[i]) & 0xFF] ^ crc >> 8;
    return ~crc;
}

}  // namespace hexlane
