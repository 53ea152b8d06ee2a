// serial_holder.h: which process has a device, as far as /proc shows it to us.
#pragma once

#include <cstddef>

namespace hexlane::platform {

// The process that has `device` locked by flock; when there is none, the first one besides ours that has it
// open. Gives its id, with its program's name in name[size]; 0 when none is visible.
int device_holder(const char* device, char* name, std::size_t size);

}  // namespace hexlane::platform
