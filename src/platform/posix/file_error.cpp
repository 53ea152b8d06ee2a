// file_error.cpp: why a file call failed, kept for each thread, and the entry of a file as files.h tells it.

#include "platform/posix/file_error.h"

#include "platform/posix/file_calls.h"

#include <cstring>

namespace hexlane::platform {

namespace {

thread_local FileError last_error = FileError::NONE;

struct ErrorMeaning {
    int number;
    FileError error;
};
constexpr ErrorMeaning ERROR_MEANINGS[] = {
    {ENOENT, FileError::NOT_FOUND},
    {ENOTDIR, FileError::NOT_FOUND},
    {EACCES, FileError::ACCESS_DENIED},
    {EPERM, FileError::ACCESS_DENIED},
    {EISDIR, FileError::NOT_REGULAR},
    {ENXIO, FileError::NOT_REGULAR},
    {EEXIST, FileError::EXISTS},
    {ENOTEMPTY, FileError::EXISTS},
    {ENOSPC, FileError::DISK_FULL},
    {EDQUOT, FileError::DISK_FULL},
    {EFBIG, FileError::TOO_LARGE},
    {EOVERFLOW, FileError::TOO_LARGE},
    {ENAMETOOLONG, FileError::NAME_TOO_LONG},
    {EROFS, FileError::READ_ONLY_DISK},
    {EMFILE, FileError::TOO_MANY_OPEN},
    {ENFILE, FileError::TOO_MANY_OPEN},
    {EIO, FileError::IO},
    {ENODEV, FileError::IO},
    {ESTALE, FileError::IO},
    {EREMOTEIO, FileError::IO},
};

int64_t nanoseconds(const struct timespec& time) {
    return static_cast<int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

FileError last_file_error() {
    return last_error;
}

void set_last_file_error(FileError error) {
    last_error = error;
}

const char* file_error_text(FileError error) {
    switch (error) {
    case FileError::NONE:
        return "nothing has failed";
    case FileError::NOT_FOUND:
        return "there is no such file or folder";
    case FileError::ACCESS_DENIED:
        return "access is denied";
    case FileError::NOT_REGULAR:
        return "it is not an ordinary file";
    case FileError::EXISTS:
        return "a file of that name exists already";
    case FileError::DISK_FULL:
        return "no space is left on the disk";
    case FileError::TOO_LARGE:
        return "the file would become too large for the disk";
    case FileError::NAME_TOO_LONG:
        return "the name is too long";
    case FileError::READ_ONLY_DISK:
        return "the disk can only be read";
    case FileError::TOO_MANY_OPEN:
        return "too many files are open";
    case FileError::IO:
        return "the disk does not answer as it should";
    case FileError::IN_USE:
        return "another program is writing it";
    case FileError::OTHER:
        break;
    }
    return "the system refused it";
}

int note_errno() {
    for (const ErrorMeaning& meaning : ERROR_MEANINGS) {
        if (meaning.number == errno) {
            return note_failure(meaning.error);
        }
    }
    return note_failure(FileError::OTHER);
}

int note_failure(FileError error) {
    last_error = error;
    return 0;
}

bool path_fits(const char* path) {
    return std::strlen(path) < PATH_SIZE || note_failure(FileError::NAME_TOO_LONG) != 0;
}

bool stat_path(const char* path, struct stat* entry) {
    const int64_t result =
        file_call(path_plan(FileCall::STAMP, path), [&](std::size_t) { return stat(path, entry); });
    return result == 0 || note_errno() != 0;
}

bool stat_handle(int file, struct stat* entry) {
    const int64_t result =
        file_call(handle_plan(FileCall::STAMP, file), [&](std::size_t) { return fstat(file, entry); });
    return result == 0 || note_errno() != 0;
}

FileStamp stamp_of(const struct stat& entry) {
    return {entry.st_dev, entry.st_ino, entry.st_size, nanoseconds(entry.st_mtim),
            nanoseconds(entry.st_ctim)};
}

}  // namespace hexlane::platform
