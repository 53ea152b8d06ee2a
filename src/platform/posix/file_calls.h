// file_calls.h: the one door through which posix/files.cpp makes its system calls, so that file_faults.h can
// count them, note them and let them fail. For the files of this folder only.
#pragma once

#include "platform/posix/file_faults.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace hexlane::platform {

// Whether a fault is armed or a log is kept.
extern bool file_faults_armed;

// What a call is about to do; `file` -1 when it goes by path. `second_path` is the new name of a RENAME.
struct FileCallPlan {
    FileCall kind;
    const char* path;
    int file;
    std::size_t size;
    bool for_writing;
    const char* second_path;
};

// What the injector makes of it.
struct FileCallVerdict {
    int error;         // not 0: the call is not made and fails with this errno
    std::size_t size;  // bytes that it may handle
    bool exit_after;
};

// May end the process.
FileCallVerdict before_file_call(const FileCallPlan& plan);
void after_file_call(const FileCallPlan& plan, const FileCallVerdict& verdict, int64_t result);

// Makes `call(size)`, a system call in the usual form: -1 and errno on failure.
template <typename Call>
int64_t file_call(const FileCallPlan& plan, Call call) {
    if (!file_faults_armed) [[likely]] {
        return static_cast<int64_t>(call(plan.size));
    }
    const FileCallVerdict verdict = before_file_call(plan);
    int64_t result = -1;
    if (verdict.error != 0) {
        errno = verdict.error;
    } else {
        result = static_cast<int64_t>(call(verdict.size));
    }
    after_file_call(plan, verdict, result);
    return result;
}

inline FileCallPlan path_plan(FileCall kind, const char* path) {
    return {kind, path, -1, 0, false, nullptr};
}
inline FileCallPlan handle_plan(FileCall kind, int file, std::size_t size = 0) {
    return {kind, nullptr, file, size, false, nullptr};
}

// The count behind open_file_count.
void count_open_file(int change);

}  // namespace hexlane::platform
