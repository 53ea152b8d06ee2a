// serial_problem.cpp: the last problem of each thread, and its words.

#include "platform/posix/serial_problem.h"

#include "platform/posix/serial_holder.h"
#include "platform/text.h"

#include <cerrno>
#include <cstring>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

constexpr std::size_t TEXT_SIZE = PATH_SIZE + 200;

thread_local char last_text[TEXT_SIZE];

// The group whose members may use the device, into name[size]; 0 when the group may not either.
int group_of_device(const char* device, char* name, std::size_t size) {
    struct stat entry;
    if (stat(device, &entry) != 0 || (entry.st_mode & (S_IRGRP | S_IWGRP)) != (S_IRGRP | S_IWGRP)) {
        return 0;
    }
    char space[1024];
    group found;
    group* result = nullptr;
    return getgrgid_r(entry.st_gid, &found, space, sizeof space, &result) == 0 && result != nullptr &&
                   copy_text(name, size, found.gr_name)
               ? 1
               : 0;
}

int note_no_permission(const char* device) {
    char group_name[64];
    char text[TEXT_SIZE];
    if (group_of_device(device, group_name, sizeof group_name)) {
        format_text(text, sizeof text,
                    "No permission to use %s. Add the user to the group %s, then log in again.", device,
                    group_name);
    } else {
        format_text(text, sizeof text, "No permission to use %s.", device);
    }
    return note_line_problem(text);
}

}  // namespace

void clear_line_problem() {
    last_text[0] = '\0';
}

int note_line_problem(const char* text) {
    copy_text(last_text, sizeof last_text, text);
    return 0;
}

int note_device_error(const char* device, int error) {
    char text[TEXT_SIZE];
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
        format_text(text, sizeof text, "%s is not there. Is the adapter plugged in?", device);
        return note_line_problem(text);
    case ENXIO:
    case ENODEV:
    case EIO:
        format_text(text, sizeof text, "There is no serial port behind %s, or its adapter is unplugged.",
                    device);
        return note_line_problem(text);
    case EACCES:
    case EPERM:
        return note_no_permission(device);
    case EBUSY:
    case EWOULDBLOCK:
        return note_device_in_use(device);
    case ENOTTY:
        format_text(text, sizeof text, "%s is not a serial line.", device);
        return note_line_problem(text);
    default:
        format_text(text, sizeof text, "%s: %s.", device, std::strerror(error));
        return note_line_problem(text);
    }
}

int note_device_in_use(const char* device) {
    char name[64];
    char text[TEXT_SIZE];
    const int holder = device_holder(device, name, sizeof name);
    if (holder == getpid()) {
        format_text(text, sizeof text, "%s is in use by this program already.", device);
    } else if (holder != 0) {
        format_text(text, sizeof text, "%s is in use by process %d (%s).", device, holder, name);
    } else {
        format_text(text, sizeof text, "%s is in use by another program.", device);
    }
    return note_line_problem(text);
}

const char* line_problem_text() {
    return last_text;
}

}  // namespace hexlane::platform
