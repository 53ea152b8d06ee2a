// codes.h: the character codes and line ends of machine controls, in tables of the simulator's own: it is a
// check on the station and takes nothing from it. Pure.
#pragma once

#include <cstdint>
#include <string_view>

namespace simulator {

enum class Code : uint8_t { ISO, EIA, ASCII, BINARY };
enum class LineEnd : uint8_t { CRLF, LF, CR, LFCR, LFCRCR, DOLLAR, NONE };

constexpr int NO_CODE = -1;

// Control characters that frame a program.
constexpr uint8_t STX = 0x02;
constexpr uint8_t ETX = 0x03;
constexpr uint8_t EOT = 0x04;
constexpr uint8_t ACK = 0x06;
constexpr uint8_t FF = 0x0C;
constexpr uint8_t XON = 0x11;  // DC1
constexpr uint8_t XOFF = 0x13;
constexpr uint8_t ETB = 0x17;

// The line byte of a character, or NO_CODE where the code has none. EIA has capitals only.
int line_byte_of(Code code, uint8_t character);

// The character of a line byte, or NO_CODE. In EIA 'O' and ':' share a code, and '3' is DC3's: both give the
// former.
int character_of(Code code, uint8_t line_byte);

// What stands for a line end on the line; empty where line ends are not converted.
std::string_view line_end_bytes(LineEnd end);

// "ETB", "m", "8A": a control character's name, the character itself, or two hexadecimal digits.
// `named` tells which: false for a character that stands for itself.
struct CharacterName {
    char text[4];
    bool named;
};
CharacterName name_of(int character);

}  // namespace simulator
