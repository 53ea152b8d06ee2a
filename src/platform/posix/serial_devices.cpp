// serial_devices.cpp: serial devices by /sys/class/tty, their names by udev's links in /dev/serial.

#include "platform/posix/serial_devices.h"

#include "platform/posix/serial_holder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace hexlane::platform {

namespace {

constexpr const char* CLASS_FOLDER = "/sys/class/tty";
constexpr const char* NAME_FOLDERS[] = {"/dev/serial/by-id", "/dev/serial/by-path"};

// A port of the mainboard that is not there has a device all the same, with the type 0.
bool has_hardware(const fs::path& entry) {
    std::error_code error;
    if (!fs::exists(entry / "device", error)) {
        return false;
    }
    std::ifstream type_file(entry / "type");
    int type = 1;
    return !(type_file >> type) || type != 0;
}

}  // namespace

std::vector<std::string> serial_devices() {
    std::vector<std::string> found;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(CLASS_FOLDER, error)) {
        if (has_hardware(entry.path())) {
            found.push_back("/dev/" + entry.path().filename().string());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<std::string> stable_names(const std::string& device) {
    std::vector<std::string> names;
    for (const char* folder : NAME_FOLDERS) {
        std::error_code error;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
            if (fs::canonical(entry.path(), error) == fs::path(device)) {
                names.push_back(entry.path().string());
            }
        }
    }
    return names;
}

std::string device_state(const std::string& device) {
    std::error_code error;
    if (!fs::exists(device, error)) {
        return "not there";
    }
    if (access(device.c_str(), R_OK | W_OK) != 0) {
        return "no permission";
    }
    char name[64];
    const int process = device_holder(device.c_str(), name, sizeof name);
    return process != 0 ? "in use by process " + std::to_string(process) + " (" + name + ")" : "free";
}

}  // namespace hexlane::platform
