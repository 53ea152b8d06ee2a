// row_scan.h: where rows end in raw bytes: at every LF and every NUL. Pure; any thread.
#pragma once

#include <cstdint>

namespace hexlane {

// Writes the offsets of all row-end bytes in data[length] to ends[length] in rising order. Gives their
// number.
int32_t find_row_ends(const uint8_t* data, int32_t length, int32_t* ends);

}  // namespace hexlane
