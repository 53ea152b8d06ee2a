// file_faults.h: makes the file system fail on purpose, and keeps a log of the calls made to it, for tests.
// Every system call of posix/files.cpp passes here. Calls are numbered from 1 since reset_file_faults, each
// kind for itself and all together. With nothing armed a call costs one branch. Faults and log are one for
// the whole program; any thread.
//
// A fault loop: for n = 1, 2, ... { reset_file_faults(); fail_file_call(FileCall::ANY, n, EIO); act(); }
// until file_fault_fired() stays false.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace hexlane::platform {

// Kinds of calls. Their names in texts and logs are the same in small letters, with '-' for '_'.
enum class FileCall : uint8_t {
    OPEN,
    CREATE,
    READ,
    WRITE,
    COPY,  // a piece copied from file to file inside the system
    RESIZE,
    FLUSH,
    FOLDER_FLUSH,
    RENAME,
    DELETE,
    MAKE_FOLDER,
    LIST,
    STAMP,  // size, times or kind of a file
    MODE,   // mode or owner
    LINK,   // what a symbolic link says
    CLOSE,
    ANY,  // in a rule: all of them
};

const char* file_call_name(FileCall kind);

struct FileCallRecord {
    FileCall kind;
    std::string path;  // for RENAME "from -> to"; empty for a file that was opened before recording began
    int64_t size;      // bytes asked for by READ, WRITE, COPY; else 0
    int64_t result;    // bytes or 0; -1 for failure
    int error;         // errno of a failure, else 0
};

// Everything off; numbers start at 1 again, the log is empty. File handles that are open stay open.
void reset_file_faults();

// Keeps a log from here on.
void record_file_calls();
const std::vector<FileCallRecord>& file_call_log();

// Calls of that kind since the reset; they are counted while a fault is armed or a log is kept.
int file_call_count(FileCall kind);

// The n-th call of `kind` from here on, among those whose path contains `path_part` if that is not empty,
// fails with errno `error` and does nothing; the next `times` - 1 such calls fail too (times < 0: all).
void fail_file_call(FileCall kind, int n, int error, const char* path_part = "", int times = 1);

// The disk takes `bytes` more by WRITE and COPY: the call that reaches the limit takes a part, later ones
// fail with ENOSPC. After `failures` of those there is space again (< 0: never). A negative `bytes` frees
// the disk at once.
void fill_disk_after(int64_t bytes, int failures = -1);

// What a path refuses, with EACCES. `path` is as the caller of files.h gives it, or, when it does not begin
// with '/', the last parts of that: "a.nc", "sub/a.nc".
constexpr int DENY_READ = 1;     // opening it at all
constexpr int DENY_WRITE = 2;    // opening it for writing
constexpr int DENY_ENTRIES = 4;  // in a folder: making, renaming and deleting the names in it
void deny_path(const char* path, int what);

// The process ends, without any clean-up and with FAULT_EXIT_CODE, at the n-th call of any kind from here on:
// before it, after it, or when half of the bytes of a WRITE, COPY or READ have passed (for other kinds:
// before).
enum class ExitPoint : uint8_t { BEFORE, HALFWAY, AFTER };
constexpr int FAULT_EXIT_CODE = 86;
void exit_at_file_call(int n, ExitPoint point);

// Whether a fault has failed or cut short a call since the reset.
bool file_fault_fired();

// Files that files.h has open now.
int open_file_count();

// Arms faults written as text, several with ';' between them:
//   fail KIND N ERROR [PATH-PART [TIMES]]     "fail write 3 ENOSPC", "fail flush 1 EIO chng.txt"
//   full BYTES [FAILURES]                     "full 4096", "full 4096 2"
//   deny read|write|entries PATH              "deny write a.nc", "deny entries /tmp/work"
//   exit-before N, exit-halfway N, exit-after N
// A program makes files of its own at its start, so that a PATH-PART is often wanted. KIND is a
// file_call_name or "any"; ERROR one of EACCES EDQUOT EEXIST EFBIG EIO EMFILE ENODEV ENOENT ENOSPC EPERM
// EROFS EXDEV. Gives 1; 0 when a part is not of these forms, and then nothing is armed.
int arm_file_faults_from_text(const char* text);

}  // namespace hexlane::platform
