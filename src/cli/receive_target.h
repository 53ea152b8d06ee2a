// receive_target.h: where `receive` writes: beside the name, as NAME.part, which gets the name when all has
// come. A failure leaves NAME.part with what came, and what had the name before. A pipe or a device is
// written directly. One target a run, main thread only.
#pragma once

#include "platform/files.h"

#include <string>

namespace hexlane {

// Looks whether run.file may be received into, and keeps other programs away from it. Opens a pipe or device.
// Gives the reason of a refusal, or "". Nothing is made yet.
std::string claim_target();

// Makes NAME.part, when the port is open. Gives the file for the engine, which closes it; NO_FILE with the
// reason in platform::last_file_error().
platform::FileHandle open_target();

// The file that a message should name: what is being written.
const char* target_name();

// Behind the transfer: gives NAME.part its name if all has come, and else leaves it, unless it is empty.
// Gives the reason why a whole file could not get its name, or "". run.left tells what is left.
std::string finish_target(bool complete);

}  // namespace hexlane
