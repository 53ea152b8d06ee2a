// serial_ports.h: which device a COM number means.
#pragma once

#include <cstddef>

namespace hexlane::platform {

// The device of COM `port` into name[size]: the one of this run, else HEXLANE_COM1 to HEXLANE_COM4, else the
// line in the launch directory's file `ports`, else /dev/ttyS0 to /dev/ttyS3. Empty for another number or a
// device that does not fit.
void port_device(int port, char* name, std::size_t size);

// Gives COM `port` a device for the rest of the run; empty takes it back.
void set_port_device(int port, const char* device);

}  // namespace hexlane::platform
