// paths.cpp: what stands under a name: its kind and stamp, links, renaming, deleting, folders and their
// names.

#include "platform/files.h"

#include "platform/posix/file_calls.h"
#include "platform/posix/file_error.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <vector>

namespace hexlane::platform {

namespace {

constexpr int LINKS_MAX = 40;  // as many as the system itself follows

// The folder that holds `path`: all before its last '/', "." when there is none.
void folder_of(const char* path, char* folder, std::size_t size) {
    copy_text(folder, size, path);
    char* slash = std::strrchr(folder, '/');
    if (slash == nullptr) {
        copy_text(folder, size, ".");
    } else {
        slash[slash == folder ? 1 : 0] = '\0';
    }
}

bool same_entry(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// Whether names in a folder are one when they differ only in the case of their letters.
bool folder_ignores_case(const char* folder) {
    constexpr unsigned long CASELESS[] = {
        0x4D44,      // FAT
        0x2011BAB0,  // exFAT
        0xFF534D42,  // CIFS
        0xFE534D42,  // SMB 2
    };
    struct statfs disk;
    if (statfs(folder, &disk) == 0) {
        for (unsigned long type : CASELESS) {
            if (static_cast<unsigned long>(disk.f_type) == type) {
                return true;
            }
        }
    }
    const int file = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    int flags = 0;
    const bool known = ioctl(file, FS_IOC_GETFLAGS, &flags) == 0;
    close(file);
    return known && (flags & FS_CASEFOLD_FL) != 0;
}

int rename_with(const char* from, const char* to, unsigned flags) {
    FileCallPlan plan = path_plan(FileCall::RENAME, from);
    plan.second_path = to;
    return static_cast<int>(
        file_call(plan, [&](std::size_t) { return renameat2(AT_FDCWD, from, AT_FDCWD, to, flags); }));
}

// One step along a link: the text of the link in `path` in the place of `path`. Gives 1, 0 when `path` is no
// link, -1 when the result does not fit.
int follow_one_link(char* path, std::size_t size) {
    char text[PATH_SIZE];
    const auto length = static_cast<ssize_t>(file_call(
        path_plan(FileCall::LINK, path), [&](std::size_t) { return readlink(path, text, sizeof text); }));
    if (length < 0) {
        return 0;
    }
    if (static_cast<std::size_t>(length) >= sizeof text) {
        return -1;
    }
    text[length] = '\0';
    char* name = text[0] == '/' ? nullptr : std::strrchr(path, '/');
    char* start = name != nullptr ? name + 1 : path;
    return copy_text(start, size - static_cast<std::size_t>(start - path), text) ? 1 : -1;
}

}  // namespace

int path_stamp(const char* path, FileStamp* stamp) {
    struct stat entry;
    if (!path_fits(path) || !stat_path(path, &entry)) {
        return 0;
    }
    *stamp = stamp_of(entry);
    return 1;
}

PathKind path_kind(const char* path) {
    struct stat entry;
    if (!path_fits(path) || !stat_path(path, &entry)) {
        return PathKind::NONE;
    }
    if (S_ISREG(entry.st_mode)) {
        return PathKind::FILE;
    }
    return S_ISDIR(entry.st_mode) ? PathKind::FOLDER : PathKind::OTHER;
}

int delete_file(const char* path) {
    if (!path_fits(path)) {
        return 0;
    }
    const int64_t result =
        file_call(path_plan(FileCall::DELETE, path), [&](std::size_t) { return unlink(path); });
    return result == 0 ? 1 : note_errno();
}

int make_folder(const char* path) {
    if (!path_fits(path)) {
        return 0;
    }
    const int64_t result =
        file_call(path_plan(FileCall::MAKE_FOLDER, path), [&](std::size_t) { return mkdir(path, 0777); });
    if (result == 0 || (errno == EEXIST && path_kind(path) == PathKind::FOLDER)) {
        return 1;
    }
    return note_errno();
}

int rename_file(const char* from, const char* to) {
    return path_fits(from) && path_fits(to) && (rename_with(from, to, 0) == 0 || note_errno()) ? 1 : 0;
}

int exchange_files(const char* left, const char* right) {
    return path_fits(left) && path_fits(right) &&
                   (rename_with(left, right, RENAME_EXCHANGE) == 0 || note_errno())
               ? 1
               : 0;
}

int rename_to_new(const char* from, const char* to) {
    if (!path_fits(from) || !path_fits(to)) {
        return 0;
    }
    if (rename_with(from, to, RENAME_NOREPLACE) == 0) {
        return 1;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return note_errno();
    }
    // The disk's driver can't do it in one step. A second name is never put in the place of another; where
    // there are no second names either, a look before the renaming must do.
    FileCallPlan plan = path_plan(FileCall::RENAME, from);
    plan.second_path = to;
    if (file_call(plan, [&](std::size_t) { return link(from, to); }) == 0) {
        return delete_file(from);
    }
    struct stat entry;
    if (errno == EEXIST || lstat(to, &entry) == 0) {
        return note_failure(FileError::EXISTS);
    }
    return rename_with(from, to, 0) == 0 ? 1 : note_errno();
}

int flush_folder_of(const char* path) {
    char folder[PATH_SIZE];
    if (!path_fits(path)) {
        return 0;
    }
    folder_of(path, folder, sizeof folder);
    const int64_t result = file_call(path_plan(FileCall::FOLDER_FLUSH, folder), [&](std::size_t) {
        const int file = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (file < 0) {
            return -1;
        }
        int flushed = fsync(file);
        const int error = errno;
        close(file);
        errno = error;
        // Some network and FAT drivers have no such operation: there is nothing to be done then.
        if (flushed != 0 && (error == EINVAL || error == ENOSYS || error == EOPNOTSUPP)) {
            flushed = 0;
        }
        return flushed;
    });
    return result == 0 ? 1 : note_errno();
}

int same_path(const char* left, const char* right) {
    if (std::strcmp(left, right) == 0) {
        return 1;
    }
    struct stat left_entry;
    struct stat right_entry;
    const bool left_exists = path_fits(left) && stat_path(left, &left_entry);
    const bool right_exists = path_fits(right) && stat_path(right, &right_entry);
    if (left_exists || right_exists) {
        return left_exists && right_exists && same_entry(left_entry, right_entry) ? 1 : 0;
    }
    // Two names that do not exist yet are one file if they are one name in one folder.
    char left_folder[PATH_SIZE];
    char right_folder[PATH_SIZE];
    folder_of(left, left_folder, sizeof left_folder);
    folder_of(right, right_folder, sizeof right_folder);
    if (!stat_path(left_folder, &left_entry) || !stat_path(right_folder, &right_entry) ||
        !same_entry(left_entry, right_entry)) {
        return 0;
    }
    const char* left_name = file_title_of(left);
    const char* right_name = file_title_of(right);
    return std::strcmp(left_name, right_name) == 0 ||
                   (equal_ignoring_case(left_name, right_name) && folder_ignores_case(left_folder))
               ? 1
               : 0;
}

int follow_links(const char* path, char* target, std::size_t size) {
    if (!copy_text(target, size, path)) {
        return note_failure(FileError::NAME_TOO_LONG);
    }
    for (int links = 0; links <= LINKS_MAX; links++) {
        const int followed = follow_one_link(target, size);
        if (followed <= 0) {
            return followed == 0 ? 1 : note_failure(FileError::NAME_TOO_LONG);
        }
    }
    return note_failure(FileError::OTHER);
}

// The names are gathered before the first visit, so that a visit may delete.
int list_folder(const char* folder, const char* prefix, void (*visit)(void* context, const char* name),
                void* context) {
    if (!path_fits(folder)) {
        return -1;
    }
    DIR* entries = nullptr;
    const int64_t opened = file_call(path_plan(FileCall::LIST, folder), [&](std::size_t) {
        entries = opendir(folder);
        return entries != nullptr ? 0 : -1;
    });
    if (opened != 0) {
        note_errno();
        return -1;
    }
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = readdir(entries)) {
        const bool is_dots = std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0;
        if (!is_dots && std::strncmp(entry->d_name, prefix, std::strlen(prefix)) == 0) {
            names.emplace_back(entry->d_name);
        }
    }
    const int error = errno;
    closedir(entries);
    if (error != 0) {
        errno = error;
        note_errno();
        return -1;
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        visit(context, name.c_str());
    }
    return static_cast<int>(names.size());
}

}  // namespace hexlane::platform
