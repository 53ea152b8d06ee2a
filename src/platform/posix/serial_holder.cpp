// serial_holder.cpp: the holder of a device, from /proc/locks and /proc/PID/fd (proc(5)). Processes of other
// users show their files to root alone.

#include "platform/posix/serial_holder.h"

#include "platform/text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

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

bool has_device_open(const char* process, const struct stat& device) {
    char folder[64];
    if (!format_text(folder, sizeof folder, "/proc/%s/fd", process)) {
        return false;
    }
    DIR* files = opendir(folder);
    if (files == nullptr) {
        return false;
    }
    bool found = false;
    for (const dirent* entry = readdir(files); entry != nullptr && !found; entry = readdir(files)) {
        struct stat file;
        found = entry->d_name[0] != '.' && fstatat(dirfd(files), entry->d_name, &file, 0) == 0 &&
                S_ISCHR(file.st_mode) && file.st_rdev == device.st_rdev && file.st_ino == device.st_ino &&
                file.st_dev == device.st_dev;
    }
    closedir(files);
    return found;
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
        if (process > 0 && process != getpid() && has_device_open(entry->d_name, device)) {
            user = process;
        }
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
