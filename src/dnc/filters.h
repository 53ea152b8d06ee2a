// filters.h: from file bytes to the bytes of the line and back, the framing of the block protocols included.
// All work on the slot's TransferState and buffers, under its lock. The machine's settings are looked up once
// for each call of a fill.
#pragma once

#include <cstdint>

namespace hexlane {

// One fill of the output buffer in the two sending modes: pieces of the file buffer, and one line. Give 1
// when the end of the file has been reached and all that belongs behind it is in the output buffer; 0
// otherwise. A fill stops early where a block ends that the machine must answer, and where the output buffer
// is full; what belongs to a byte that was taken already is carried to the next fill.
int fill_from_buffer(int slot);
int fill_from_line(int slot);

// Turns received bytes into file bytes in the slot's file buffer. Gives their number, at most twice `count`;
// `count` is at most RECEIVE_CHUNK.
int receive_filter(int count, const uint8_t* bytes, int slot);

}  // namespace hexlane
