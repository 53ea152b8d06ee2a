// serial_holder.h: which process has a device, as far as /proc shows it to us.
#pragma once

#include <cstddef>
#include <sys/types.h>

namespace hexlane::platform {

// The process that has `device` locked by flock; when there is none, the first one besides ours that has it
// open. The process at the far end of a pty is the line itself and no holder. Gives its id, with its
// program's name in name[size]; 0 when none is visible.
int device_holder(const char* device, char* name, std::size_t size);

// Whether a process besides ours has `device` open, locked or not; the far end of a pty doesn't count here
// either.
bool device_has_user(const char* device);

// Whether the number is that of a program's side of a pty.
bool is_pty_device(dev_t device);

}  // namespace hexlane::platform
