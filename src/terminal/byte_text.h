// byte_text.h: line bytes as a person reads them: printable ones as they are, the others by name or number in
// angle brackets, or all of them as hexadecimal numbers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hexlane {

// How a machine's bytes are meant.
struct TerminalCode {
    bool eia;  // EIA punched tape code; else the bytes are characters
};

// The text of received bytes in UTF-8. A row ends behind each line feed (EIA: its end of block).
std::string named_text(const TerminalCode& code, std::string_view bytes);

// "48 65 0A ", 16 bytes a row; `already` is how many bytes stand in front, so that a text can be continued.
std::string hex_text(std::string_view bytes, int64_t already);

// The line bytes of typed text (UTF-8). Characters that the code does not have are left out, and counted in
// *lost.
std::string line_bytes(const TerminalCode& code, std::string_view text, int* lost);

// The line byte of a control character 0 to 31, or 127; -1 when the code has none.
int control_byte(const TerminalCode& code, int control);

}  // namespace hexlane
