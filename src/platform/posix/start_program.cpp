// start_program.cpp: programs that a real run starts. A desktop that only tells of them brings its own.

#include "platform/instance.h"
#include "platform/posix/detached.h"
#include "platform/process.h"

namespace hexlane::platform {

int start_program(const char* path, const char* first, const char* second, const char* third) {
    char home[PATH_SIZE];
    const char* arguments[] = {path, first, second, third, nullptr};
    return launch_folder(home, sizeof home) ? start_detached(arguments, home) : 0;
}

}  // namespace hexlane::platform
