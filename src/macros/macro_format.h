// macro_format.h: a macro file, MACRO.001 to MACRO.050 in the folder MACROS. Binary, little-endian on any
// host, always MACRO_FILE_SIZE bytes, whatever the number of events.
//
//   offset  width  field
//        0     34  name, NUL-terminated, at most 33 characters
//       34      2  signed: how many events count, 0 to 999
//       36  12000  MACRO_RING_SIZE events; those behind the count hold what was there before. Each:
//                  +0  4  unsigned: the message, one of the five that are recorded
//                  +4  2  unsigned: low half of its first parameter
//                  +6  2  zero
//                  +8  4  unsigned: its second parameter
//
// A WM_CHAR of the letter G with the second parameter 0x00220001 is 02 01 00 00 47 00 00 00 01 00 22 00.
#pragma once

#include <cstdint>

namespace hexlane {

constexpr int MACRO_NAME_SIZE = 34;  // bytes, the NUL included
constexpr int MACRO_RING_SIZE = 1000;
constexpr int MACRO_MOST_EVENTS = MACRO_RING_SIZE - 1;
constexpr int MACRO_COUNT_OFFSET = 34;
constexpr int MACRO_RING_OFFSET = 36;
constexpr int MACRO_EVENT_SIZE = 12;
constexpr int MACRO_MESSAGE_OFFSET = 0;
constexpr int MACRO_WPARAM_OFFSET = 4;
constexpr int MACRO_RESERVED_OFFSET = 6;
constexpr int MACRO_LPARAM_OFFSET = 8;
constexpr int MACRO_FILE_SIZE = 12036;

static_assert(MACRO_NAME_SIZE == MACRO_COUNT_OFFSET);
static_assert(MACRO_COUNT_OFFSET + 2 == MACRO_RING_OFFSET);
static_assert(MACRO_RESERVED_OFFSET + 2 == MACRO_LPARAM_OFFSET);
static_assert(MACRO_LPARAM_OFFSET + 4 == MACRO_EVENT_SIZE);
static_assert(MACRO_RING_OFFSET + MACRO_RING_SIZE * MACRO_EVENT_SIZE == MACRO_FILE_SIZE);

// One stored message.
struct MacroEvent {
    uint32_t message;
    uint16_t wparam;
    uint32_t lparam;
};

// One file in memory.
struct MacroFileImage {
    uint8_t bytes[MACRO_FILE_SIZE];
};
static_assert(sizeof(MacroFileImage) == MACRO_FILE_SIZE);

inline uint32_t get_little_endian(const uint8_t* at, int width) {
    uint32_t value = 0;
    for (int i = 0; i < width; ++i)
        value |= static_cast<uint32_t>(at[i]) << (8 * i);
    return value;
}

inline void put_little_endian(uint8_t* at, int width, uint32_t value) {
    for (int i = 0; i < width; ++i)
        at[i] = static_cast<uint8_t>(value >> (8 * i));
}

// The event in ring entry `index`, 0 to MACRO_MOST_EVENTS.
inline MacroEvent get_macro_event(const MacroFileImage& image, int index) {
    const uint8_t* at = image.bytes + MACRO_RING_OFFSET + index * MACRO_EVENT_SIZE;
    return {get_little_endian(at + MACRO_MESSAGE_OFFSET, 4),
            static_cast<uint16_t>(get_little_endian(at + MACRO_WPARAM_OFFSET, 2)),
            get_little_endian(at + MACRO_LPARAM_OFFSET, 4)};
}

inline void put_macro_event(MacroFileImage* image, int index, const MacroEvent& event) {
    uint8_t* at = image->bytes + MACRO_RING_OFFSET + index * MACRO_EVENT_SIZE;
    put_little_endian(at + MACRO_MESSAGE_OFFSET, 4, event.message);
    put_little_endian(at + MACRO_WPARAM_OFFSET, 2, event.wparam);
    put_little_endian(at + MACRO_RESERVED_OFFSET, 2, 0);
    put_little_endian(at + MACRO_LPARAM_OFFSET, 4, event.lparam);
}

inline int get_macro_count(const MacroFileImage& image) {
    return static_cast<int16_t>(get_little_endian(image.bytes + MACRO_COUNT_OFFSET, 2));
}

inline void put_macro_count(MacroFileImage* image, int count) {
    put_little_endian(image->bytes + MACRO_COUNT_OFFSET, 2, static_cast<uint32_t>(count));
}

}  // namespace hexlane
