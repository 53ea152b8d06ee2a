// copy_buffer.h: the one work buffer that all copying of the store shares. Main thread only; each user is
// done with it before it calls another operation of the store.
#pragma once

#include "shell/store_limits.h"

#include <cstdint>

namespace hexlane {

extern uint8_t copy_buffer[COPY_BUFFER_SIZE];

}  // namespace hexlane
