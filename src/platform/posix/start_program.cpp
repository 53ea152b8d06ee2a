// start_program.cpp: programs that a real run starts. A desktop that only tells of them brings its own.

#include "platform/instance.h"
#include "platform/posix/detached.h"
#include "platform/process.h"

#include <cstring>
#include <unistd.h>

namespace hexlane::platform {

namespace {

// The program of that name in the folder of the running one, into `path`. 0 when there is none.
int program_beside(const char* name, char path[PATH_SIZE]) {
    const ssize_t length = readlink("/proc/self/exe", path, PATH_SIZE - 1);
    if (length <= 0 || length >= static_cast<ssize_t>(PATH_SIZE - 1)) {
        return 0;
    }
    path[length] = '\0';
    char* slash = std::strrchr(path, '/');
    if (slash == nullptr) {
        return 0;
    }
    slash[1] = '\0';
    return append_text(path, PATH_SIZE, name) && access(path, X_OK) == 0 ? 1 : 0;
}

}  // namespace

int start_program(const char* path, const char* first, const char* second, const char* third) {
    char home[PATH_SIZE];
    char beside[PATH_SIZE];
    const bool is_name = std::strchr(path, '/') == nullptr;
    const char* program = is_name && program_beside(path, beside) ? beside : path;
    const char* arguments[] = {program, first, second, third, nullptr};
    return launch_folder(home, sizeof home) ? start_detached(arguments, home) : 0;
}

}  // namespace hexlane::platform
