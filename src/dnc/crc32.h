// crc32.h: the CRC-32 of ISO 3309 and ITU-T V.42 (polynomial 0x04C11DB7, reflected), as `crc32` and zip
// archives give it. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace hexlane {

// The checksum of what `crc` stands for with `size` bytes behind it; start with 0.
uint32_t crc32(uint32_t crc, const void* data, std::size_t size);

}  // namespace hexlane
