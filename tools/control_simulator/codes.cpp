#include "codes.h"

#include <bit>
#include <cstdio>

namespace simulator {

namespace {

// ---- EIA RS-244, by the columns of the published tape chart ------------------------------------------

struct EiaRun {
    const char* characters;
    uint8_t holes[12];  // in the order of `characters`
};

// A character that comes later in the table never takes a line byte from one that came earlier.
constexpr EiaRun EIA_RUNS[] = {
    {"0123456789", {0x20, 0x01, 0x02, 0x13, 0x04, 0x15, 0x16, 0x07, 0x08, 0x19}},
    {"ABCDEFGHI", {0x61, 0x62, 0x73, 0x64, 0x75, 0x76, 0x67, 0x68, 0x79}},
    {"JKLMNOPQR", {0x51, 0x52, 0x43, 0x54, 0x45, 0x46, 0x57, 0x58, 0x49}},
    {"STUVWXYZ", {0x32, 0x23, 0x34, 0x25, 0x26, 0x37, 0x38, 0x29}},
    {"+-.,/ \t", {0x70, 0x40, 0x6B, 0x3B, 0x31, 0x10, 0x3E}},
    {"%&()\n", {0x0B, 0x0E, 0x1A, 0x4A, 0x80}},
    {":\x13\x11", {0x46, 0x13, 0x11}},
};

constexpr bool has_odd_parity(const EiaRun& run) {
    for (int i = 0; run.characters[i] != '\0'; i++) {
        const bool odd = std::popcount(run.holes[i]) % 2 == 1;
        if (!odd && run.characters[i] != XON)
            return false;
    }
    return true;
}

constexpr bool chart_has_odd_parity() {
    for (const EiaRun& run : EIA_RUNS) {
        if (!has_odd_parity(run))
            return false;
    }
    return true;
}
static_assert(chart_has_odd_parity(), "a tape reader would stop at a code with even parity");

struct EiaTables {
    int16_t line_byte[256];
    int16_t character[256];
};

constexpr EiaTables make_tables() {
    EiaTables tables{};
    for (int i = 0; i < 256; i++)
        tables.line_byte[i] = tables.character[i] = NO_CODE;
    for (const EiaRun& run : EIA_RUNS) {
        for (int i = 0; run.characters[i] != '\0'; i++) {
            const auto character = static_cast<uint8_t>(run.characters[i]);
            tables.line_byte[character] = run.holes[i];
            if (tables.character[run.holes[i]] == NO_CODE)
                tables.character[run.holes[i]] = character;
        }
    }
    for (int letter = 'a'; letter <= 'z'; letter++)
        tables.line_byte[letter] = tables.line_byte[letter - 'a' + 'A'];
    return tables;
}

constexpr EiaTables EIA = make_tables();

constexpr const char* CONTROL_NAMES[] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL",
                                         "BS",  "TAB", "LF",  "VT",  "FF",  "CR",  "SO",  "SI",
                                         "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB",
                                         "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

}  // namespace

int line_byte_of(Code code, uint8_t character) {
    switch (code) {
    case Code::EIA:
        return EIA.line_byte[character];
    case Code::ISO:
        return character < 0x80 ? character : NO_CODE;
    default:
        return character;
    }
}

int character_of(Code code, uint8_t line_byte) {
    switch (code) {
    case Code::EIA:
        return EIA.character[line_byte];
    case Code::ISO:
        return line_byte < 0x80 ? line_byte : NO_CODE;
    default:
        return line_byte;
    }
}

std::string_view line_end_bytes(LineEnd end) {
    constexpr std::string_view BYTES[] = {"", "\n", "\r", "\n\r", "\n\r\r", "$\r\n", ""};
    return BYTES[static_cast<int>(end)];
}

CharacterName name_of(int character) {
    CharacterName name{};
    name.named = true;
    if (character >= 0 && character < 0x20) {
        std::snprintf(name.text, sizeof name.text, "%s", CONTROL_NAMES[character]);
    } else if (character == 0x7F) {
        std::snprintf(name.text, sizeof name.text, "DEL");
    } else if (character > 0x7F || character == '<') {
        std::snprintf(name.text, sizeof name.text, "%02X", static_cast<unsigned>(character) & 0xFF);
    } else {
        name.text[0] = static_cast<char>(character);
        name.named = false;
    }
    return name;
}

}  // namespace simulator
