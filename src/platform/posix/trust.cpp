// trust.cpp: whether somebody else can have put something into a file or folder, or can do so now.

#include "platform/process.h"

#include "platform/files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

// A group that bears the user's name, is the user's first one and has nobody else in it: the usual private
// group, with which a umask of 002 is no hole.
bool is_own_group(gid_t id) {
    const passwd* user = getpwuid(geteuid());
    const group* entry = user != nullptr && user->pw_gid == id ? getgrgid(id) : nullptr;
    if (entry == nullptr || std::strcmp(entry->gr_name, user->pw_name) != 0) {
        return false;
    }
    for (char** member = entry->gr_mem; *member != nullptr; member++) {
        if (std::strcmp(*member, user->pw_name) != 0) {
            return false;
        }
    }
    return true;
}

// Where a file has an access list, its group bits tell of everybody on that list.
bool has_access_list(const char* path) {
    return getxattr(path, "system.posix_acl_access", nullptr, 0) > 0;
}

// The folder that holds `path`, links followed.
bool real_folder_of(const char* path, char folder[PATH_SIZE]) {
    if (!follow_links(path, folder, PATH_SIZE)) {
        return false;
    }
    char* slash = std::strrchr(folder, '/');
    if (slash == nullptr) {
        return false;
    }
    slash[slash == folder ? 1 : 0] = '\0';
    return true;
}

}  // namespace

const char* stranger_reason(const char* path) {
    struct stat entry;
    if (stat(path, &entry) != 0) {
        return "it cannot be looked at";
    }
    if (entry.st_uid != geteuid() && entry.st_uid != 0) {
        return "it belongs to another user";
    }
    if ((entry.st_mode & S_IWOTH) != 0) {
        return "everybody may write there";
    }
    if ((entry.st_mode & S_IWGRP) != 0 && (!is_own_group(entry.st_gid) || has_access_list(path))) {
        return "others of its group may write there";
    }
    return nullptr;
}

const char* stranger_reason_of_program(const char* path) {
    char folder[PATH_SIZE];
    const char* reason = stranger_reason(path);
    if (reason == nullptr) {
        reason = real_folder_of(path, folder) ? stranger_reason(folder) : "its links lead nowhere";
    }
    return reason;
}

void warn_on_terminal(const char* line) {
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, line);
}

}  // namespace hexlane::platform
