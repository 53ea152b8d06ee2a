// clock.cpp: the time of a real run. A desktop with a clock of its own brings its own of both.

#include "platform/clock.h"

#include <ctime>

namespace hexlane::platform {

uint32_t tick_ms() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                                 static_cast<uint64_t>(now.tv_nsec) / 1'000'000);
}

void time_of_day(char* text, std::size_t size) {
    const std::time_t now = std::time(nullptr);
    tm local;
    if (localtime_r(&now, &local) == nullptr || std::strftime(text, size, "%Y-%m-%d %H:%M:%S", &local) == 0) {
        text[0] = '\0';
    }
}

}  // namespace hexlane::platform
