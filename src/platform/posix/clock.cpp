// clock.cpp: the time of a real run. A desktop with a clock of its own brings its own tick_ms.

#include "platform/clock.h"

#include <ctime>

namespace hexlane::platform {

uint32_t tick_ms() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                                 static_cast<uint64_t>(now.tv_nsec) / 1'000'000);
}

}  // namespace hexlane::platform
