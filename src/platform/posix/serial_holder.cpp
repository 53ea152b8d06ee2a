// serial_holder.cpp: the holder of a device, from /proc/locks and /proc/PID/fd (proc(5)). Processes of other
// users show their files to root alone.

#include "platform/posix/serial_holder.h"

#include "platform/text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

// devices.txt of the kernel: our sides of ptys, and the file that makes one and is its machine's side.
constexpr unsigned PTY_MAJOR_FIRST = 136;
constexpr unsigned PTY_MAJOR_LAST = 143;
constexpr unsigned MACHINE_SIDE_MAJOR = 5;
constexpr unsigned MACHINE_SIDE_MINOR = 2;

// The process that has locked the file, from lines like "1: FLOCK  ADVISORY  WRITE 23203 00:1a:3 0 EOF". 0
// for none.
int lock_holder(const struct stat& device) {
    std::FILE* locks = std::fopen("/proc/locks", "re");
    if (locks == nullptr) {
        return 0;
    }
    char line[256];
    int holder = 0;
    while (holder == 0 && std::fgets(line, sizeof line, locks) != nullptr) {
        char kind[16];
        int process = 0;
        unsigned major_number = 0;
        unsigned minor_number = 0;
        unsigned long file = 0;
        if (std::sscanf(line, "%*s %15s %*s %*s %d %x:%x:%lu", kind, &process, &major_number, &minor_number,
                        &file) == 5 &&
            std::strcmp(kind, "FLOCK") == 0 && process > 0 && file == device.st_ino &&
            makedev(major_number, minor_number) == device.st_dev) {
            holder = process;
        }
    }
    std::fclose(locks);
    return holder;
}

// What a process has to do with a device.
struct Part {
    bool has_it;         // open, under whatever name
    bool is_other_side;  // of a pty: it is the line's far end itself, even when it has our side open too
};

// Nothing is asked of the medium: a file of a server that doesn't answer must not hold the search.
bool look_at(int folder, const char* name, struct statx* file) {
    return statx(folder, name, AT_STATX_DONT_SYNC, STATX_TYPE | STATX_INO, file) == 0 &&
           S_ISCHR(file->stx_mode);
}

// Ptys of two containers may share a number, so for them the entry counts too.
bool is_device(const struct statx& file, const struct stat& device) {
    const bool same_number = makedev(file.stx_rdev_major, file.stx_rdev_minor) == device.st_rdev;
    return same_number && (!is_pty_device(device.st_rdev) ||
                           (file.stx_ino == device.st_ino &&
                            makedev(file.stx_dev_major, file.stx_dev_minor) == device.st_dev));
}

// Whether the file is the machine's side of the pty `device`: its fdinfo tells "tty-index:" and the number.
bool is_machine_side(const struct statx& file, const char* process, const char* name,
                     const struct stat& device) {
    char path[96];
    if (file.stx_rdev_major != MACHINE_SIDE_MAJOR || file.stx_rdev_minor != MACHINE_SIDE_MINOR ||
        !is_pty_device(device.st_rdev) ||
        !format_text(path, sizeof path, "/proc/%s/fdinfo/%s", process, name)) {
        return false;
    }
    std::FILE* info = std::fopen(path, "re");
    if (info == nullptr) {
        return false;
    }
    char line[256];
    unsigned number = 0;
    bool found = false;
    while (!found && std::fgets(line, sizeof line, info) != nullptr) {
        found = std::sscanf(line, "tty-index: %u", &number) == 1 && number == minor(device.st_rdev);
    }
    std::fclose(info);
    return found;
}

Part part_of(const char* process, const struct stat& device) {
    Part part = {false, false};
    char folder[64];
    if (!format_text(folder, sizeof folder, "/proc/%s/fd", process)) {
        return part;
    }
    DIR* files = opendir(folder);
    if (files == nullptr) {
        return part;
    }
    for (const dirent* entry = readdir(files); entry != nullptr; entry = readdir(files)) {
        struct statx file;
        if (entry->d_name[0] != '.' && look_at(dirfd(files), entry->d_name, &file)) {
            part.has_it |= is_device(file, device);
            part.is_other_side |= is_machine_side(file, process, entry->d_name, device);
        }
    }
    closedir(files);
    return part;
}

int first_user(const struct stat& device) {
    DIR* processes = opendir("/proc");
    if (processes == nullptr) {
        return 0;
    }
    int user = 0;
    for (const dirent* entry = readdir(processes); entry != nullptr && user == 0;
         entry = readdir(processes)) {
        const int process = std::atoi(entry->d_name);
        if (process <= 0 || process == getpid()) {
            continue;
        }
        const Part part = part_of(entry->d_name, device);
        user = part.has_it && !part.is_other_side ? process : 0;
    }
    closedir(processes);
    return user;
}

void program_name(int process, char* name, std::size_t size) {
    char path[64];
    char line[64] = "";
    format_text(path, sizeof path, "/proc/%d/comm", process);
    std::FILE* file = std::fopen(path, "re");
    if (file != nullptr) {
        if (std::fgets(line, sizeof line, file) != nullptr) {
            line[std::strcspn(line, "\n")] = '\0';
        }
        std::fclose(file);
    }
    copy_text(name, size, line[0] != '\0' ? line : "?");
}

}  // namespace

bool is_pty_device(dev_t device) {
    return major(device) >= PTY_MAJOR_FIRST && major(device) <= PTY_MAJOR_LAST;
}

bool device_has_user(const char* device) {
    struct stat entry;
    return stat(device, &entry) == 0 && first_user(entry) != 0;
}

int device_holder(const char* device, char* name, std::size_t size) {
    struct stat entry;
    if (stat(device, &entry) != 0) {
        return 0;
    }
    int holder = lock_holder(entry);
    if (holder == 0) {
        holder = first_user(entry);
    }
    if (holder != 0) {
        program_name(holder, name, size);
    }
    return holder;
}

}  // namespace hexlane::platform
