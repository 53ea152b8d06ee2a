// clock.cpp: time by the script. Chance comes from the system, as everywhere (posix/random.cpp).

#include "platform/clock.h"

#include "platform/scripted/message_queue.h"

namespace hexlane::platform {

// Not 0 at the start, so that a time that was never taken shows as long ago.
constexpr int64_t FIRST_TICK_MS = 1000000;

uint32_t tick_ms() {
    return static_cast<uint32_t>(FIRST_TICK_MS + clock_ms());
}

}  // namespace hexlane::platform
