// pump.h: what the main window has to know of pump_one_message. Main thread only.
#pragma once

namespace hexlane::platform {

// Whether a long run of the program serves messages with nothing modal in front of the main window: it cannot
// be closed then.
bool command_is_pumping();

}  // namespace hexlane::platform
