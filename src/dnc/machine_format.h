// machine_format.h: one machine's parameters, the same in memory and in COMMPARM.INI: 16 records of 1108
// bytes one after the other, no header. Numbers are little-endian. Reserved bytes are kept as they were read.
#pragma once

#include "dnc/little_endian.h"

#include <cstddef>
#include <cstdint>

namespace hexlane {

constexpr int MACHINE_COUNT = 16;
constexpr int MACHINE_RECORD_SIZE = 1108;
constexpr int MACHINE_FILE_SIZE = MACHINE_COUNT * MACHINE_RECORD_SIZE;
constexpr int MACHINE_NAME_SIZE = 36;   // bytes, the NUL included
constexpr int MACHINE_STRING_SIZE = 8;  // bytes of a start or end string
constexpr uint8_t BLANK_BYTE = 0xFF;    // a string entry without a character
constexpr uint8_t XOFF_DEFAULT = 0x13;
constexpr uint8_t XOFF_EIA_ALTERNATE = 0x93;

struct MachineParams {
    char name[MACHINE_NAME_SIZE];
    LittleInt16 protocol;         // PROTOCOL_
    LittleInt16 baud_index;       // 0 to 10, see BAUD_RATES
    LittleInt16 data_type;        // DATA_
    LittleInt16 data_bits_index;  // 0 is 7 bits, 1 is 8 bits
    LittleInt16 parity_index;     // 0 none, 1 even, 2 odd
    LittleInt16 stop_bits_index;  // 0 is one stop bit, 1 is two
    LittleInt16 eob_conversion;   // 0 to 6, see EOB_CONVERSIONS
    uint8_t reserved_50[6];
    LittleInt16 port_index;  // 0 to 3 for COM1 to COM4
    LittleInt16 handshake;   // 0 software (XON/XOFF), 1 hardware (RTS/CTS)
    uint8_t reserved_60[2];
    LittleInt16 start_char;  // sent repeatedly ahead of the data, -1 when blank
    LittleInt16 end_char;    // sent repeatedly behind the data, -1 when blank
    LittleInt16 start_char_count;
    LittleInt16 end_char_count;
    LittleInt16 eob_delay_ms;  // not 0 selects sending line by line
    uint8_t reserved_72[3];
    uint8_t start_string[MACHINE_STRING_SIZE];  // BLANK_BYTE where there is no character
    uint8_t start_terminator;
    uint8_t reserved_84;
    uint8_t end_string[MACHINE_STRING_SIZE];
    uint8_t end_terminator;
    uint8_t reserved_94;
    uint8_t compress_comments;
    uint8_t compress_line_numbers;
    uint8_t compress_tabs;
    uint8_t compress_spaces;
    uint8_t compress_character_on;
    int8_t compress_character;  // -1 when blank
    uint8_t reserved_101;
    LittleInt16 current_machine;    // in record 0: the machine saved as current
    LittleInt16 receive_timeout_s;  // seconds of silence that end a receive
    uint8_t reserved_106[2];
    uint8_t reserved_108[4];
    uint8_t xoff_char;  // XOFF_DEFAULT or XOFF_EIA_ALTERNATE
    uint8_t reserved_113[995];
};
static_assert(sizeof(MachineParams) == MACHINE_RECORD_SIZE);
static_assert(offsetof(MachineParams, protocol) == 36);
static_assert(offsetof(MachineParams, port_index) == 56);
static_assert(offsetof(MachineParams, start_char) == 62);
static_assert(offsetof(MachineParams, eob_delay_ms) == 70);
static_assert(offsetof(MachineParams, start_string) == 75);
static_assert(offsetof(MachineParams, end_string) == 85);
static_assert(offsetof(MachineParams, compress_comments) == 95);
static_assert(offsetof(MachineParams, compress_character) == 100);
static_assert(offsetof(MachineParams, current_machine) == 102);
static_assert(offsetof(MachineParams, receive_timeout_s) == 104);
static_assert(offsetof(MachineParams, xoff_char) == 112);

}  // namespace hexlane
