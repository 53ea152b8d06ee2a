// serial_ports.cpp: COM1 to COM4 as devices, for the real lines and the scripted ones: the device of this
// run, else HEXLANE_COM1 to HEXLANE_COM4, else the line in the launch directory's file `ports`, else
// /dev/ttyS0 to /dev/ttyS3.

#include "platform/serial.h"

#include "platform/process.h"
#include "platform/text.h"

#include <cstdio>
#include <cstring>
#include <mutex>

namespace hexlane::platform {

namespace {

constexpr const char* BLANKS = " \t\r\n";

std::mutex run_devices_lock;
char run_devices[PORT_COUNT][PATH_SIZE];  // of this run, empty for none

// Cuts a line of the file `ports` into "COMn" and the device, which may hold blanks inside. 0 when it names
// no device.
int split_entry(char* line, char** com, char** device) {
    line[std::strcspn(line, "#")] = '\0';
    *com = line + std::strspn(line, BLANKS);
    char* end = *com + std::strcspn(*com, BLANKS);
    *device = end + std::strspn(end, BLANKS);
    std::size_t length = std::strlen(*device);
    while (length > 0 && std::strchr(BLANKS, (*device)[length - 1]) != nullptr) {
        length--;
    }
    (*device)[length] = '\0';
    *end = '\0';
    return length > 0 ? 1 : 0;
}

// The device of `port` in the file `ports`. 0 when it has none there.
int device_from_file(int port, char* name, std::size_t size) {
    char folder[PATH_SIZE];
    char path[PATH_SIZE];
    char wanted[8];
    if (!launch_folder(folder, sizeof folder) || !format_text(path, sizeof path, "%s/ports", folder)) {
        return 0;
    }
    format_text(wanted, sizeof wanted, "COM%d", port);
    std::FILE* file = std::fopen(path, "re");
    if (file == nullptr) {
        return 0;
    }
    char line[PATH_SIZE + 64];
    int found = 0;
    while (!found && std::fgets(line, sizeof line, file) != nullptr) {
        char* com;
        char* device;
        found = split_entry(line, &com, &device) && equal_ignoring_case(com, wanted) &&
                copy_text(name, size, device);
    }
    std::fclose(file);
    return found;
}

}  // namespace

void line_device(int port, char* name, std::size_t size) {
    name[0] = '\0';
    if (port < 1 || port > PORT_COUNT) {
        return;
    }
    {
        const std::lock_guard guard(run_devices_lock);
        if (run_devices[port - 1][0] != '\0') {
            copy_text(name, size, run_devices[port - 1]);
            return;
        }
    }
    char variable[16];
    format_text(variable, sizeof variable, "HEXLANE_COM%d", port);
    if (environment_value(variable, name, size) && name[0] != '\0') {
        return;
    }
    if (!device_from_file(port, name, size)) {
        format_text(name, size, "/dev/ttyS%d", port - 1);
    }
}

void line_set_device(int port, const char* device) {
    if (port < 1 || port > PORT_COUNT) {
        return;
    }
    const std::lock_guard guard(run_devices_lock);
    if (!copy_text(run_devices[port - 1], sizeof run_devices[port - 1], device)) {
        run_devices[port - 1][0] = '\0';
    }
}

}  // namespace hexlane::platform
