// random.cpp: bytes that nobody can guess, for every kind of run.

#include "platform/clock.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sys/random.h>

namespace hexlane::platform {

// Without entropy there are no safe names for temporary files, so there is nothing to go on with.
void random_bytes(void* buffer, std::size_t size) {
    auto* to = static_cast<unsigned char*>(buffer);
    while (size > 0) {
        const ssize_t got = getrandom(to, size, 0);
        if (got < 0 && errno != EINTR) {
            std::perror("hexlane: getrandom");
            std::abort();
        }
        if (got > 0) {
            to += got;
            size -= static_cast<std::size_t>(got);
        }
    }
}

}  // namespace hexlane::platform
