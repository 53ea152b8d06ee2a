// machine_fields.h: the fields of a machine's parameters as a table (name, place, limits, default), and the
// texts that their numbers stand for. A field out of its limits (from a damaged file) counts as its default
// wherever it is used, and stays as it was read when the file is written. Pure; any thread.
#pragma once

#include "dnc/machine_format.h"

#include <cstdint>

namespace hexlane {

constexpr int PROTOCOL_GENERAL = 0;
constexpr int PROTOCOL_BRIDGEPORT = 1;
constexpr int PROTOCOL_HEIDENHAIN = 2;
constexpr int PROTOCOL_PHILLIPS = 3;

constexpr int DATA_ISO = 0;
constexpr int DATA_EIA = 1;
constexpr int DATA_ASCII = 2;
constexpr int DATA_BINARY = 3;

constexpr int EOB_LF = 1;
constexpr int EOB_NO_CONVERSION = 6;

constexpr int HANDSHAKE_SOFTWARE = 0;
constexpr int HANDSHAKE_HARDWARE = 1;

constexpr const char* PROTOCOL_TEXTS[] = {"GENERAL             ", "BRIDGEPORT DNC LINK ",
                                          "HEIDENHAIN BLOCKWISE", "PHILLIPS            "};
constexpr const char* BAUD_TEXTS[] = {"110  ", "300  ", "600  ", "1200 ", "2400 ", "4800 ",
                                      "9600 ", "14.4K", "19.2K", "38.4K", "57.4K"};
constexpr uint32_t BAUD_RATES[] = {110, 300, 600, 1200, 2400, 4800, 9600, 14400, 19200, 38400, 56000};
constexpr const char* DATA_TYPE_TEXTS[] = {"ISO", "EIA", "ASCII", "BINARY"};
constexpr const char* PARITY_TEXTS[] = {"NONE", "EVEN", "ODD"};
constexpr const char* EOB_TEXTS[] = {"CR LF     (default) ", "LF        (10)      ", "CR        (13)      ",
                                     "LF CR     (10 13)   ", "LF CR CR  (10 13 13)", " $ CR LF  (36 13 10)",
                                     "No Conversion       "};

// What an end-of-block conversion sends for the CR of a file.
struct EobConversion {
    bool on;
    uint8_t length;
    uint8_t bytes[4];
};
constexpr EobConversion EOB_CONVERSIONS[] = {
    {false, 0, {0, 0, 0, 0}},  {true, 1, {10, 0, 0, 0}},   {true, 1, {13, 0, 0, 0}},
    {true, 2, {10, 13, 0, 0}}, {true, 3, {10, 13, 13, 0}}, {true, 3, {36, 13, 10, 0}},
    {false, 0, {0, 0, 0, 0}},
};

enum class FieldForm : uint8_t { INT16, UNSIGNED8, SIGNED8, STRING };

struct MachineField {
    const char* name;
    int16_t offset;  // in MachineParams
    FieldForm form;
    int16_t low, high;  // of the number, or of each byte of a STRING
    int16_t fallback;   // the default, taken too for a value out of the limits
};

// In the order of the record. A STRING has BLANK_BYTE (-1) as default in each place.
enum class Field : uint8_t {
    PROTOCOL,
    BAUD_INDEX,
    DATA_TYPE,
    DATA_BITS_INDEX,
    PARITY_INDEX,
    STOP_BITS_INDEX,
    EOB_CONVERSION,
    PORT_INDEX,
    HANDSHAKE,
    START_CHAR,
    END_CHAR,
    START_CHAR_COUNT,
    END_CHAR_COUNT,
    EOB_DELAY_MS,
    START_STRING,
    END_STRING,
    COMPRESS_COMMENTS,
    COMPRESS_LINE_NUMBERS,
    COMPRESS_TABS,
    COMPRESS_SPACES,
    COMPRESS_CHARACTER_ON,
    COMPRESS_CHARACTER,
    CURRENT_MACHINE,
    RECEIVE_TIMEOUT_S,
    XOFF_CHAR,
    COUNT,
};
constexpr int FIELD_COUNT = static_cast<int>(Field::COUNT);

extern const MachineField MACHINE_FIELDS[FIELD_COUNT];

// The number as it stands in the record, and the number to work with: the default when it is out of the
// limits. For a STRING both give its first byte.
int field_as_read(const MachineParams& machine, Field field);
int machine_setting(const MachineParams& machine, Field field);

// Writes a number into the record as it is.
void set_field(MachineParams* machine, Field field, int value);

// The record has a name in bytes of the Windows-1252 table; people type and read text.
constexpr int MACHINE_NAME_TEXT_SIZE = 3 * (MACHINE_NAME_SIZE - 1) + 1;
void machine_name(const MachineParams& machine, char text[MACHINE_NAME_TEXT_SIZE]);

// 1; 0 when the text is too long or has a character that the table lacks: then the name stays as it was.
int set_machine_name(MachineParams* machine, const char* text);

}  // namespace hexlane
