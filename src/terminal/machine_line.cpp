#include "terminal/machine_line.h"

#include "dnc/machine_fields.h"
#include "platform/text.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr uint8_t XON = 0x11;
constexpr uint8_t ACK = 0x06;
constexpr uint8_t PARITY_BY_INDEX[] = {PARITY_NONE, PARITY_EVEN, PARITY_ODD};
constexpr const char* PARITY_WORDS[] = {"no parity", "even parity", "odd parity"};

}  // namespace

int port_of(const MachineParams& machine) {
    return machine_setting(machine, Field::PORT_INDEX) + 1;
}

LineSettings line_settings_of(const MachineParams& machine) {
    const bool hardware = machine_setting(machine, Field::HANDSHAKE) == HANDSHAKE_HARDWARE;
    LineSettings settings = {};
    settings.baud_rate = BAUD_RATES[machine_setting(machine, Field::BAUD_INDEX)];
    settings.byte_size = static_cast<uint8_t>(machine_setting(machine, Field::DATA_BITS_INDEX) + 7);
    settings.parity = PARITY_BY_INDEX[machine_setting(machine, Field::PARITY_INDEX)];
    settings.stop_bits =
        machine_setting(machine, Field::STOP_BITS_INDEX) == 0 ? STOP_BITS_ONE : STOP_BITS_TWO;
    settings.hardware_handshake = hardware;
    settings.software_handshake = !hardware;
    settings.xon_char = XON;
    settings.xoff_char = machine.xoff_char == XOFF_EIA_ALTERNATE ? XOFF_EIA_ALTERNATE : XOFF_DEFAULT;
    settings.event_char = ACK;
    return settings;
}

TerminalCode code_of(const MachineParams& machine) {
    return {machine_setting(machine, Field::DATA_TYPE) == DATA_EIA};
}

std::string end_of_block_of(const MachineParams& machine) {
    const EobConversion& eob = EOB_CONVERSIONS[machine_setting(machine, Field::EOB_CONVERSION)];
    return eob.on ? std::string(reinterpret_cast<const char*>(eob.bytes), eob.length) : "\r\n";
}

std::string settings_text(const MachineParams& machine, uint32_t real_rate) {
    const LineSettings settings = line_settings_of(machine);
    char rate[40] = "";
    if (real_rate != 0 && real_rate != settings.baud_rate)
        format_text(rate, sizeof rate, " (the line runs at %u)", real_rate);
    char text[200];
    format_text(text, sizeof text, "%u baud%s, %d data bits, %s, %s, %s, %s", settings.baud_rate, rate,
                settings.byte_size, PARITY_WORDS[machine_setting(machine, Field::PARITY_INDEX)],
                settings.stop_bits == STOP_BITS_ONE ? "1 stop bit" : "2 stop bits",
                settings.hardware_handshake ? "RTS/CTS" : "XON/XOFF",
                DATA_TYPE_TEXTS[machine_setting(machine, Field::DATA_TYPE)]);
    return text;
}

}  // namespace hexlane
