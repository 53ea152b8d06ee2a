// ports.cpp: the command `ports`: which serial devices there are, by which stable names, and who holds them.

#include "cli/cli.h"

#include "frame/directories.h"
#include "platform/posix/serial_holder.h"
#include "platform/serial.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace hexlane {

using namespace platform;

const char* const PORTS_HELP = R"(hexlane-cli ports: serial devices, and what COM1 to COM4 mean.

Use
    hexlane-cli ports

Each device that has hardware behind it has a line with its state: free, in use (with the process,
as far as the system shows it), or no permission. Below it stand its stable names, which stay the same
whatever is plugged in first: give one of them to --port, to HEXLANE_COM1 to HEXLANE_COM4, or to the
file `ports` in the program's folder ("COM1 /dev/serial/by-id/...", one line each).
)";

namespace {

constexpr const char* CLASS_FOLDER = "/sys/class/tty";
constexpr const char* NAME_FOLDERS[] = {"/dev/serial/by-id", "/dev/serial/by-path"};

// A port of the mainboard that is not there has a device all the same, with the type 0.
bool has_hardware(const fs::path& entry) {
    std::error_code error;
    if (!fs::exists(entry / "device", error))
        return false;
    std::ifstream type_file(entry / "type");
    int type = 1;
    return !(type_file >> type) || type != 0;
}

std::vector<std::string> devices() {
    std::vector<std::string> found;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(CLASS_FOLDER, error)) {
        if (has_hardware(entry.path()))
            found.push_back("/dev/" + entry.path().filename().string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string state_of(const std::string& device) {
    std::error_code error;
    if (!fs::exists(device, error))
        return "not there";
    if (access(device.c_str(), R_OK | W_OK) != 0)
        return "no permission";
    char name[64];
    const int process = device_holder(device.c_str(), name, sizeof name);
    return process != 0 ? "in use by process " + std::to_string(process) + " (" + name + ")" : "free";
}

void print_stable_names(const std::string& device) {
    for (const char* folder : NAME_FOLDERS) {
        std::error_code error;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
            if (fs::canonical(entry.path(), error) == fs::path(device))
                std::printf("          %s\n", entry.path().c_str());
        }
    }
}

}  // namespace

int run_ports(const Words& words) {
    if (!words.empty())
        return refuse_use("ports takes nothing behind it");
    if (!find_home())
        return refuse(EXIT_CANNOT, "there is no folder for the program's files: set HEXLANE_HOME to one");
    for (const std::string& device : devices()) {
        std::printf("%-24s  %s\n", device.c_str(), state_of(device).c_str());
        print_stable_names(device);
    }
    for (int com = 1; com <= PORT_COUNT; com++) {
        char device[PATH_SIZE];
        line_device(com, device, sizeof device);
        std::printf("COM%d  %-18s  %s\n", com, device, state_of(device).c_str());
    }
    return EXIT_COMPLETE;
}

}  // namespace hexlane
