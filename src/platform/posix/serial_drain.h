// serial_drain.h: whether a driver has sent everything, asked by the wait that it has for it (tcdrain(3)).
//
// That is the only way to learn what the chip of an adapter still holds where its driver doesn't tell of a
// shift register. The wait has no limit, and a machine that holds the line makes it last; so a timer ends it.
#pragma once

#include <cstdint>

namespace hexlane::platform {

// 1, or 0 when the driver was still waiting at the limit. 1 too when the driver can't be asked.
int drain_tty(int tty);

// Runs `call`, which waits in the system and ends with EINTR at a signal, for about `limit` ns. 1 when it
// came to its end, failed or not; 0 when it was ended.
int end_in_time(int (*call)(int file), int file, int64_t limit);

}  // namespace hexlane::platform
