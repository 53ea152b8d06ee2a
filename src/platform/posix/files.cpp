// files.cpp: byte-exact files over open, pread and pwrite. Paths and folders are in paths.cpp.
// A handle is the file descriptor itself.

#include "platform/files.h"

#include "platform/posix/file_calls.h"
#include "platform/posix/file_error.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

// A write past the size limit of a process must fail like any other and not end the program.
const auto IGNORED_SIGNAL = std::signal(SIGXFSZ, SIG_IGN);

// Takes over a descriptor that has just been opened.
FileHandle new_handle(int64_t file) {
    count_open_file(1);
    return static_cast<FileHandle>(file);
}

int64_t open_regular(const char* path, int flags) {
    FileCallPlan plan = path_plan(FileCall::OPEN, path);
    plan.for_writing = (flags & O_ACCMODE) != O_RDONLY;
    const auto open_with = [&](int more) {
        return file_call(plan, [&](std::size_t) { return open(path, flags | more | O_CLOEXEC | O_NOCTTY); });
    };
    const int64_t file = open_with(O_NONBLOCK);
    // A file that another program holds a lease on (a file server does) is not to be had without waiting.
    return file < 0 && errno == EWOULDBLOCK ? open_with(0) : file;
}

int64_t read_piece(int file, char* to, std::size_t size, int64_t position) {
    int64_t got = -1;
    do {
        got = file_call(handle_plan(FileCall::READ, file, size),
                        [&](std::size_t allowed) { return pread(file, to, allowed, position); });
    } while (got < 0 && errno == EINTR);
    return got;
}

int64_t write_piece(int file, const char* from, std::size_t size, int64_t position) {
    int64_t put = -1;
    do {
        put = file_call(handle_plan(FileCall::WRITE, file, size), [&](std::size_t allowed) {
            const ssize_t done = pwrite(file, from, allowed, position);
            return done < 0 && errno == ESPIPE ? write(file, from, allowed)
                                               : done;  // a pipe has no positions
        });
    } while (put < 0 && errno == EINTR);
    return put;
}

// The part of file_copy_range that the system does by itself. Gives the bytes copied; what is left is for
// copy_by_hand. -1 on failure.
int64_t copy_in_system(FileHandle from, int64_t from_position, FileHandle to, int64_t to_position,
                       int64_t count) {
    constexpr int64_t PIECE = 1 << 26;  // bytes; small enough for a fault to fall between two of them
    constexpr int64_t WRITE_AHEAD = 1 << 20;
    int64_t done = 0;
    while (done < count) {
        off64_t source = from_position + done;
        off64_t target = to_position + done;
        const int64_t size = std::min(count - done, PIECE);
        const int64_t copied = file_call(
            handle_plan(FileCall::COPY, to, static_cast<std::size_t>(size)),
            [&](std::size_t allowed) { return copy_file_range(from, &source, to, &target, allowed, 0); });
        if (copied < 0 && errno == EINTR) {
            continue;
        }
        const bool unable = copied < 0 && (errno == EXDEV || errno == EINVAL || errno == ENOSYS ||
                                           errno == EOPNOTSUPP || errno == EPERM);
        if (copied == 0 || unable) {
            break;
        }
        if (copied < 0) {
            return -1;
        }
        // The medium may begin with this piece while the next is copied: a flush is nearer then. Only a wish.
        if (copied >= WRITE_AHEAD) {
            sync_file_range(to, target - copied, copied, SYNC_FILE_RANGE_WRITE);
        }
        done += copied;
    }
    return done;
}

int64_t copy_by_hand(FileHandle from, int64_t from_position, FileHandle to, int64_t to_position,
                     int64_t count) {
    char buffer[1 << 16];
    int64_t done = 0;
    while (done < count) {
        const auto size = static_cast<std::size_t>(std::min<int64_t>(count - done, sizeof buffer));
        const int64_t got = file_read_at(from, from_position + done, buffer, size);
        if (got < 0 || !file_write_at(to, to_position + done, buffer, static_cast<std::size_t>(got))) {
            return -1;
        }
        done += got;
        if (static_cast<std::size_t>(got) < size) {
            break;
        }
    }
    return done;
}

}  // namespace

FileHandle file_open(const char* path, FileAccess access) {
    // The kind is looked at first: opening a device can act on it, and opening a FIFO can wait.
    struct stat entry;
    if (!path_fits(path) || !stat_path(path, &entry)) {
        return NO_FILE;
    }
    if (!S_ISREG(entry.st_mode)) {
        set_last_file_error(FileError::NOT_REGULAR);
        return NO_FILE;
    }
    const int64_t file = open_regular(path, access == FileAccess::READ ? O_RDONLY : O_RDWR);
    if (file < 0) {
        note_errno();
        return NO_FILE;
    }
    // Another file may have taken the name since.
    const bool known = stat_handle(static_cast<int>(file), &entry);
    if (!known || !S_ISREG(entry.st_mode)) {
        close(static_cast<int>(file));
        if (known) {
            set_last_file_error(FileError::NOT_REGULAR);
        }
        return NO_FILE;
    }
    return new_handle(file);
}

FileHandle file_open_stream(const char* path) {
    if (!path_fits(path)) {
        return NO_FILE;
    }
    FileCallPlan plan = path_plan(FileCall::OPEN, path);
    plan.for_writing = true;
    const int64_t file =
        file_call(plan, [&](std::size_t) { return open(path, O_WRONLY | O_CLOEXEC | O_NOCTTY); });
    if (file < 0) {
        note_errno();
        return NO_FILE;
    }
    struct stat entry;
    const bool known = stat_handle(static_cast<int>(file), &entry);
    if (!known || S_ISREG(entry.st_mode)) {
        close(static_cast<int>(file));
        if (known) {
            set_last_file_error(FileError::EXISTS);
        }
        return NO_FILE;
    }
    return new_handle(file);
}

FileHandle file_create(const char* path, FileCreate how) {
    if (!path_fits(path)) {
        return NO_FILE;
    }
    const mode_t mode = how == FileCreate::PRIVATE ? 0600 : 0666;
    const int64_t file = file_call(path_plan(FileCall::CREATE, path), [&](std::size_t) {
        return open(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    });
    if (file < 0) {
        note_errno();
        return NO_FILE;
    }
    return new_handle(file);
}

int file_close(FileHandle file) {
    if (file < 0) {
        return note_failure(FileError::OTHER);
    }
    count_open_file(-1);
    bool closed = false;
    const int64_t result = file_call(handle_plan(FileCall::CLOSE, file), [&](std::size_t) {
        closed = true;
        return close(file);
    });
    if (!closed) {  // a fault has stood in for the call
        const int error = errno;
        close(file);
        errno = error;
    }
    // An interrupted close has let the handle go all the same.
    return result == 0 || errno == EINTR ? 1 : note_errno();
}

int64_t file_read_at(FileHandle file, int64_t position, void* buffer, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const int64_t got = read_piece(file, static_cast<char*>(buffer) + done, size - done,
                                       position + static_cast<int64_t>(done));
        if (got < 0) {
            note_errno();
            return -1;
        }
        if (got == 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return static_cast<int64_t>(done);
}

int file_write_at(FileHandle file, int64_t position, const void* data, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const int64_t put = write_piece(file, static_cast<const char*>(data) + done, size - done,
                                        position + static_cast<int64_t>(done));
        if (put < 0) {
            return note_errno();
        }
        if (put == 0) {
            return note_failure(FileError::IO);
        }
        done += static_cast<std::size_t>(put);
    }
    return 1;
}

int64_t file_copy_range(FileHandle from, int64_t from_position, FileHandle to, int64_t to_position,
                        int64_t count) {
    const int64_t done = copy_in_system(from, from_position, to, to_position, count);
    if (done < 0) {
        note_errno();
        return -1;
    }
    if (done >= count) {
        return done;
    }
    const int64_t rest = copy_by_hand(from, from_position + done, to, to_position + done, count - done);
    return rest < 0 ? -1 : done + rest;
}

int64_t file_size(FileHandle file) {
    struct stat entry;
    return stat_handle(file, &entry) ? entry.st_size : -1;
}

int file_resize(FileHandle file, int64_t size) {
    int64_t result = -1;
    do {
        result = file_call(handle_plan(FileCall::RESIZE, file),
                           [&](std::size_t) { return ftruncate(file, size); });
    } while (result < 0 && errno == EINTR);
    return result == 0 ? 1 : note_errno();
}

int file_flush(FileHandle file) {
    int64_t result = -1;
    do {
        result = file_call(handle_plan(FileCall::FLUSH, file), [&](std::size_t) { return fsync(file); });
    } while (result < 0 && errno == EINTR);
    return result == 0 || errno == EINVAL ? 1 : note_errno();
}

int file_lock(FileHandle file) {
    int result = -1;
    do {
        result = flock(file, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno != EWOULDBLOCK ? 1 : note_failure(FileError::IN_USE);
}

int file_adopt_mode(FileHandle file, FileHandle like) {
    if (like == NO_FILE) {
        const mode_t mask = umask(0);
        umask(mask);
        const int64_t result = file_call(handle_plan(FileCall::MODE, file),
                                         [&](std::size_t) { return fchmod(file, 0666 & ~mask); });
        return result == 0 ? 1 : note_errno();
    }
    struct stat entry;
    if (!stat_handle(like, &entry)) {
        return 0;
    }
    // Only the superuser may give a file away; an ordinary user may still choose among the own groups.
    const auto give_to = [&](uid_t owner, gid_t group) {
        return file_call(handle_plan(FileCall::MODE, file),
                         [&](std::size_t) { return fchown(file, owner, group); });
    };
    const bool same_owner = give_to(entry.st_uid, entry.st_gid) == 0;
    if (!same_owner) {
        give_to(static_cast<uid_t>(-1), entry.st_gid);
    }
    // Bits that act in the owner's name go with the owner.
    const mode_t mode = entry.st_mode & (same_owner ? 07777 : 0777);
    const int64_t result =
        file_call(handle_plan(FileCall::MODE, file), [&](std::size_t) { return fchmod(file, mode); });
    return result == 0 ? 1 : note_errno();
}

int file_stamp(FileHandle file, FileStamp* stamp) {
    struct stat entry;
    if (!stat_handle(file, &entry)) {
        return 0;
    }
    *stamp = stamp_of(entry);
    return 1;
}

}  // namespace hexlane::platform
