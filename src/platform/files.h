// files.h: byte-exact files and the file system around them.
// Reads and writes name their position; a handle has no position of its own. Main thread or any thread that
// owns the handle. Paths are UTF-8, at most PATH_SIZE - 1 bytes; a longer one fails with NAME_TOO_LONG.
// Back ends: posix/ (open, pread, pwrite). Scripted runs use the same one, since their files are real.
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>

namespace hexlane::platform {

using FileHandle = int32_t;
constexpr FileHandle NO_FILE = -1;

// Why the last failed call of this header on this thread failed.
enum class FileError : uint8_t {
    NONE,
    NOT_FOUND,
    ACCESS_DENIED,
    NOT_REGULAR,  // a directory, FIFO, socket or device
    EXISTS,
    DISK_FULL,  // no space, or over quota
    TOO_LARGE,  // past a size limit of the file system
    NAME_TOO_LONG,
    READ_ONLY_DISK,
    TOO_MANY_OPEN,
    IO,      // the medium failed or went away
    IN_USE,  // another handle has the lock
    OTHER,
};

FileError last_file_error();
void set_last_file_error(FileError error);

// One short sentence without a full stop, for a message box: "no space is left on the disk".
const char* file_error_text(FileError error);

enum class FileAccess : uint8_t { READ, READ_WRITE };

enum class FileCreate : uint8_t {
    NEW,      // must not exist; the user's usual mode (umask)
    PRIVATE,  // must not exist, mode 0600, never through a link: temporary files
};

// Opens an existing regular file. NO_FILE on failure; anything but a regular file is refused without
// blocking (NOT_REGULAR). Follows symbolic links.
FileHandle file_open(const char* path, FileAccess access);

// Opens a pipe or a device for writing. Positions of file_write_at mean nothing there: the bytes go one
// behind the other. A pipe waits for its reader. NO_FILE on failure, and for a regular file or a folder.
FileHandle file_open_stream(const char* path);

// Makes a new empty file, open for reading and writing. NO_FILE on failure.
FileHandle file_create(const char* path, FileCreate how);

// Gives 1, or 0 when the system reported an error at closing. The handle is gone in both cases.
int file_close(FileHandle file);

// Reads up to `size` bytes from `position`. Gives their number, less than `size` only at the end of the file;
// -1 on failure.
int64_t file_read_at(FileHandle file, int64_t position, void* buffer, std::size_t size);

// Writes all of `size` bytes at `position`. Gives 1; 0 on failure, when any part may have been written.
[[nodiscard]] int file_write_at(FileHandle file, int64_t position, const void* data, std::size_t size);

// Copies `count` bytes between two files by the system's fastest means. Gives the number copied, less than
// `count` only when `from` ended; -1 on failure of either side.
[[nodiscard]] int64_t file_copy_range(FileHandle from, int64_t from_position, FileHandle to,
                                      int64_t to_position, int64_t count);

// Size in bytes, -1 on failure.
int64_t file_size(FileHandle file);

// Sets the size in bytes. Gives 1, or 0 on failure.
[[nodiscard]] int file_resize(FileHandle file, int64_t size);

// Keeps all others that ask for the file's lock away until the handle is closed, those of this program too;
// it hinders nobody who doesn't ask. Gives 1, or 0 with IN_USE. Where the disk has no locks it gives 1.
[[nodiscard]] int file_lock(FileHandle file);

// Forces the file's bytes to the medium. Gives 1, or 0 on failure; 1 where there is none (a pipe).
[[nodiscard]] int file_flush(FileHandle file);

// Forces the entries of the folder that holds `path` to the medium. Gives 1, or 0 on failure.
[[nodiscard]] int flush_folder_of(const char* path);

// Gives `file` the mode of `like` and, where permitted, its owner and group; with NO_FILE the mode that any
// new file of the user's gets (umask). Gives 1, or 0 when the mode could not be set.
int file_adopt_mode(FileHandle file, FileHandle like);

// What a file was at one moment. Two equal stamps mean that nobody else has replaced or written it.
struct FileStamp {
    uint64_t device;
    uint64_t inode;
    int64_t size;         // bytes
    int64_t modified_ns;  // content time, ns since 1970
    int64_t changed_ns;   // entry time (mode, name, links), ns since 1970
};

int file_stamp(FileHandle file, FileStamp* stamp);   // 1, or 0 on failure
int path_stamp(const char* path, FileStamp* stamp);  // 1, or 0 on failure; follows links

enum class PathKind : uint8_t { NONE, FILE, FOLDER, OTHER };

PathKind path_kind(const char* path);  // follows links

// All give 1, or 0 on failure.
int delete_file(const char* path);
int make_folder(const char* path);  // mode 0777 by umask; 1 too when it is a folder already
[[nodiscard]] int rename_file(const char* from, const char* to);    // replaces `to` in one step
[[nodiscard]] int rename_to_new(const char* from, const char* to);  // fails with EXISTS, never replaces
[[nodiscard]] int exchange_files(const char* left,
                                 const char* right);  // both names swap their files in one step

// Whether the two paths mean one file: by device and inode when both exist (links count), otherwise by their
// texts as the file system compares them.
int same_path(const char* left, const char* right);

// The file that `path` ends in when symbolic links are followed; `path` itself when it is no link or does not
// exist. Gives 1, or 0 when the result does not fit or the links go in a circle.
int follow_links(const char* path, char* target, std::size_t size);

// Calls `visit` for each plain name in `folder` that starts with `prefix`, in byte order. `visit` may delete
// the entry. Gives the number visited, -1 when the folder cannot be read.
int list_folder(const char* folder, const char* prefix, void (*visit)(void* context, const char* name),
                void* context);

}  // namespace hexlane::platform
