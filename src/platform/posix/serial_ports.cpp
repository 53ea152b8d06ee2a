// serial_ports.cpp: COM1 to COM4 as devices, for the real lines and the scripted ones: the device of this
// run, else HEXLANE_COM1 to HEXLANE_COM4, else the row in the launch directory's file `ports`, else
// /dev/ttyS0 to /dev/ttyS3. A device that was told and can't be read is never passed over: the next one in
// this order may be another machine's.

#include "platform/serial.h"

#include "platform/posix/serial_problem.h"
#include "platform/process.h"
#include "platform/text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace hexlane::platform {

namespace {

constexpr const char* BLANKS = " \t\r\n";
constexpr int ANY_PORT = 0;

std::mutex run_devices_lock;
char run_devices[PORT_COUNT][PATH_SIZE];  // of this run, empty for none

enum class RowKind { EMPTY, DEVICE, UNREADABLE };

// A row of the file `ports`.
struct PortRow {
    RowKind kind;
    int port;            // ANY_PORT when it can't be told
    const char* device;  // it may hold blanks inside
};

constexpr PortRow UNREADABLE_ROW = {RowKind::UNREADABLE, ANY_PORT, ""};

// The number behind "COM", in any case; ANY_PORT when there is none.
int leading_port(const char* text) {
    char name[4] = "";
    copy_text(name, sizeof name, text);
    if (!equal_ignoring_case(name, "COM") || text[3] < '1' || text[3] > '0' + PORT_COUNT) {
        return ANY_PORT;
    }
    return text[4] >= '0' && text[4] <= '9' ? ANY_PORT : text[3] - '0';
}

// Takes a row apart: "COM1", blanks or one of '=' and ':', the device, a comment.
PortRow read_row(char* line) {
    line[std::strcspn(line, "#")] = '\0';
    std::size_t length = std::strlen(line);
    while (length > 0 && std::strchr(BLANKS, line[length - 1]) != nullptr) {
        line[--length] = '\0';
    }
    const char* com = line + std::strspn(line, BLANKS);
    if (*com == '\0') {
        return {RowKind::EMPTY, ANY_PORT, ""};
    }
    const int port = leading_port(com);
    if (port == ANY_PORT) {
        return UNREADABLE_ROW;
    }
    const char* behind = com + std::strlen("COM1");
    const char* device = behind + std::strspn(behind, BLANKS);
    device += *device == '=' || *device == ':' ? 1 : 0;
    device += std::strspn(device, BLANKS);
    return {device != behind && *device != '\0' ? RowKind::DEVICE : RowKind::UNREADABLE, port, device};
}

// Reads one row into line[size]. One that doesn't fit is passed over to its end. False at the end of the
// file.
bool next_row(std::FILE* file, char* line, int size, PortRow* row) {
    if (std::fgets(line, size, file) == nullptr) {
        return false;
    }
    if (std::strchr(line, '\n') != nullptr || std::feof(file) != 0) {
        *row = read_row(line);
        return true;
    }
    *row = UNREADABLE_ROW;
    for (int c = std::fgetc(file); c != '\n' && c != EOF; c = std::fgetc(file)) {
    }
    return true;
}

// A row that speaks against a port; 0 for none.
struct WrongRow {
    int number;
    const char* reason;
};

// Brings the device of `port` into `name`, which stays as it is when no row has it. A row whose port can't be
// told may be meant for any port that has no row of its own.
WrongRow find_in_rows(std::FILE* file, int port, char* name, std::size_t size) {
    constexpr const char* UNREADABLE_TEXT =
        "no port can be read there. A row is COM1 to COM4, a blank, and the device.";
    char line[2 * PATH_SIZE];
    PortRow row = UNREADABLE_ROW;
    int unknown = 0;
    int own = 0;
    for (int number = 1; next_row(file, line, sizeof line, &row); number++) {
        if (row.kind == RowKind::UNREADABLE && row.port == ANY_PORT && unknown == 0) {
            unknown = number;
        }
        if (row.port != port) {
            continue;
        }
        if (own != 0) {
            return {number, "the port has a row above already."};
        }
        own = number;
        if (row.kind == RowKind::UNREADABLE || !copy_text(name, size, row.device)) {
            return {number, UNREADABLE_TEXT};
        }
    }
    return {own == 0 ? unknown : 0, UNREADABLE_TEXT};
}

// The device of `port` in the file `ports`, or by its number when there is no row for it. 0 with the problem
// noted.
int device_from_file(int port, char* name, std::size_t size) {
    char folder[PATH_SIZE];
    char path[PATH_SIZE];
    char text[PATH_SIZE + 200];
    format_text(name, size, "/dev/ttyS%d", port - 1);
    if (!launch_folder(folder, sizeof folder) || !format_text(path, sizeof path, "%s/ports", folder)) {
        return 1;
    }
    std::FILE* file = std::fopen(path, "re");
    if (file == nullptr && errno == ENOENT) {
        return 1;
    }
    WrongRow wrong = {0, ""};
    int error = errno;
    if (file != nullptr) {
        wrong = find_in_rows(file, port, name, size);
        error = std::ferror(file) != 0 ? EIO : 0;
        std::fclose(file);
    }
    if (error != 0) {
        format_text(text, sizeof text, "%s can't be read: %s.", path, std::strerror(error));
    } else if (wrong.number != 0) {
        format_text(text, sizeof text, "%s, row %d: %s", path, wrong.number, wrong.reason);
    } else {
        return 1;
    }
    return note_line_problem(text);
}

int find_device(int port, char* name, std::size_t size) {
    if (port < 1 || port > PORT_COUNT) {
        return note_line_problem("There is no such port.");
    }
    {
        const std::lock_guard guard(run_devices_lock);
        if (run_devices[port - 1][0] != '\0') {
            return copy_text(name, size, run_devices[port - 1]);
        }
    }
    char variable[16];
    format_text(variable, sizeof variable, "HEXLANE_COM%d", port);
    const char* value = std::getenv(variable);
    if (value == nullptr || *value == '\0') {
        return device_from_file(port, name, size);
    }
    if (copy_text(name, size, value)) {
        return 1;
    }
    char text[64];
    format_text(text, sizeof text, "The device in %s has too long a name.", variable);
    return note_line_problem(text);
}

}  // namespace

int line_device(int port, char* name, std::size_t size) {
    if (find_device(port, name, size)) {
        return 1;
    }
    name[0] = '\0';
    return 0;
}

void line_name(int port, char* name, std::size_t size) {
    char device[PATH_SIZE];
    if (line_device(port, device, sizeof device)) {
        format_text(name, size, "COM%d (%s)", port, device);
    } else {
        format_text(name, size, "COM%d", port);
    }
}

int line_set_device(int port, const char* device) {
    if (port < 1 || port > PORT_COUNT || std::strlen(device) >= PATH_SIZE) {
        return 0;
    }
    const std::lock_guard guard(run_devices_lock);
    return copy_text(run_devices[port - 1], sizeof run_devices[port - 1], device);
}

}  // namespace hexlane::platform
