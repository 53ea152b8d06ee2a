#include "terminal/byte_text.h"

#include "dnc/control_names.h"
#include "dnc/eia_code.h"
#include "platform/text.h"

#include <cstdio>
#include <vector>

namespace hexlane {

namespace {

constexpr int BYTES_A_ROW = 16;
constexpr uint8_t DELETE = 0x7F;
constexpr uint8_t LINE_FEED = 0x0A;

std::string hex_number(uint8_t byte) {
    char number[4];
    std::snprintf(number, sizeof number, "%02X", byte);
    return number;
}

// A file byte as it is shown; `line_byte` is told where there is no other name.
std::string shown(uint8_t byte, uint8_t line_byte) {
    if (byte == 0 && line_byte != 0)
        return "<" + hex_number(line_byte) + ">";
    if (byte < ' ')
        return std::string("<") + CONTROL_NAMES[byte] + ">";
    if (byte == DELETE)
        return "<DEL>";
    if (byte > DELETE)
        return "<" + hex_number(byte) + ">";
    return std::string(1, static_cast<char>(byte));
}

}  // namespace

std::string named_text(const TerminalCode& code, std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto line_byte = static_cast<uint8_t>(c);
        const uint8_t byte = code.eia ? EIA_CODE.receive[line_byte] : line_byte;
        text += shown(byte, line_byte);
        if (byte == LINE_FEED)
            text += '\n';
    }
    return text;
}

std::string hex_text(std::string_view bytes, int64_t already) {
    std::string text;
    for (const char c : bytes) {
        text += hex_number(static_cast<uint8_t>(c));
        text += ++already % BYTES_A_ROW == 0 ? '\n' : ' ';
    }
    return text;
}

std::string line_bytes(const TerminalCode& code, std::string_view text, int* lost) {
    std::vector<char> bytes(text.size() + 1);
    *lost = platform::text_to_bytes(bytes.data(), bytes.size(), std::string(text).c_str()) ? 0 : 1;
    std::string line;
    for (const char* at = bytes.data(); *at != '\0'; at++) {
        const auto byte = static_cast<uint8_t>(*at);
        const uint8_t sent = code.eia ? EIA_CODE.send[byte] : byte;
        if (sent == 0)
            ++*lost;
        else
            line += static_cast<char>(sent);
    }
    return line;
}

int control_byte(const TerminalCode& code, int control) {
    if (!code.eia)
        return control;
    const int byte = EIA_CODE.send[control];
    return byte == 0 && control != 0 ? -1 : byte;
}

}  // namespace hexlane
