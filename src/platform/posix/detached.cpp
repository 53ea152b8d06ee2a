// detached.cpp: a program in a session of its own, by two forks: the first child ends at once, so the second
// becomes a child of init and is never a zombie of ours. A pipe that exec closes tells whether it started.

#include "platform/posix/detached.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace hexlane::platform {

namespace {

constexpr const char* HOME_ENTRY = "HEXLANE_HOME=";

// In the second child, between fork and exec, where only plain system calls are safe.
[[noreturn]] void become(const char* const* arguments, char* const* environment, int report) {
    std::signal(SIGXFSZ, SIG_DFL);
    std::signal(SIGPIPE, SIG_DFL);
    const int nothing = open("/dev/null", O_RDONLY);
    if (nothing >= 0) {
        dup2(nothing, STDIN_FILENO);
    }
    execvpe(arguments[0], const_cast<char* const*>(arguments), environment);
    const char failed = 1;
    static_cast<void>(!write(report, &failed, sizeof failed));
    _exit(127);
}

}  // namespace

int start_detached(const char* const* arguments, const char* home) {
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0) {
        return 0;
    }
    std::string home_entry = std::string(HOME_ENTRY) + home;
    std::vector<char*> environment;
    for (char** entry = environ; *entry != nullptr; entry++) {
        if (std::strncmp(*entry, HOME_ENTRY, std::strlen(HOME_ENTRY)) != 0) {
            environment.push_back(*entry);
        }
    }
    environment.push_back(home_entry.data());
    environment.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        setsid();
        const pid_t grandchild = fork();
        if (grandchild == 0) {
            become(arguments, environment.data(), report[1]);
        }
        _exit(grandchild < 0 ? 1 : 0);
    }
    close(report[1]);
    int status = 0;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    char failed = 0;
    ssize_t got = -1;
    do {
        got = read(report[0], &failed, sizeof failed);
    } while (got < 0 && errno == EINTR);
    close(report[0]);
    return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0 && got == 0 ? 1 : 0;
}

}  // namespace hexlane::platform
