// machine_line.h: a machine's parameters as the terminal needs them: line settings, code, end of block.
#pragma once

#include "dnc/machine_format.h"
#include "platform/serial.h"
#include "terminal/byte_text.h"

#include <string>

namespace hexlane {

int port_of(const MachineParams& machine);  // 1 to 4
platform::LineSettings line_settings_of(const MachineParams& machine);
TerminalCode code_of(const MachineParams& machine);

// File bytes that end a block for this machine: its conversion's, or CR LF.
std::string end_of_block_of(const MachineParams& machine);

// "9600 baud, 7 data bits, even parity, 1 stop bit, XON/XOFF, ISO", with the rate that the driver has set
// where that is another one.
std::string settings_text(const MachineParams& machine, uint32_t real_rate);

}  // namespace hexlane
