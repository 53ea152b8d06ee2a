// serial_devices.h: the serial devices of this computer, as the system shows them.
#pragma once

#include <string>
#include <vector>

namespace hexlane::platform {

// Devices that have hardware behind them ("/dev/ttyUSB0"), in order of their names.
std::vector<std::string> serial_devices();

// Names of a device that stay the same whatever is plugged in first.
std::vector<std::string> stable_names(const std::string& device);

// "free", "not there", "no permission", or who has it, as far as the system shows that.
std::string device_state(const std::string& device);

}  // namespace hexlane::platform
