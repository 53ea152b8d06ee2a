// ports.cpp: the command `ports`: which serial devices there are, by which stable names, and who holds them.

#include "cli/cli.h"

#include "platform/posix/serial_devices.h"
#include "platform/serial.h"
#include "shell/directories.h"

#include <cstdio>
#include <string>

namespace hexlane {

using namespace platform;

const char* const PORTS_HELP = R"(hexlane-cli ports: serial devices, and what COM1 to COM4 mean.

Use
    hexlane-cli ports

Each device that has hardware behind it has a line with its state: free, in use (with the process,
as far as the system shows it), or no permission. Below it stand its stable names, which stay the same
whatever is plugged in first: give one of them to --port, to HEXLANE_COM1 to HEXLANE_COM4, or to the
file `ports` in the program's folder ("COM1 /dev/serial/by-id/...", one line each).

Exit code
    0   done
    2   the command line makes no sense
    3   there is no folder for the program's files
)";

int run_ports(const Words& words) {
    if (!words.empty())
        return refuse_use("ports takes nothing behind it");
    if (!find_home())
        return refuse(EXIT_CANNOT, "there is no folder for the program's files: set HEXLANE_HOME to one");
    for (const std::string& device : serial_devices()) {
        std::printf("%-24s  %s\n", device.c_str(), device_state(device).c_str());
        for (const std::string& name : stable_names(device))
            std::printf("          %s\n", name.c_str());
    }
    for (int com = 1; com <= PORT_COUNT; com++) {
        char device[PATH_SIZE];
        if (line_device(com, device, sizeof device))
            std::printf("COM%d  %-18s  %s\n", com, device, device_state(device).c_str());
        else
            std::printf("COM%d  %s\n", com, line_problem_text());
    }
    return EXIT_COMPLETE;
}

}  // namespace hexlane
