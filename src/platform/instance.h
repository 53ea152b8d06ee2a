// instance.h: one running program for each home, and programs that ours starts.
// The first run owns a local socket whose name is a hash of its home, in the user's runtime directory or a
// private one (mode 0700, checked). A peer of another user is refused; a stale socket of a crashed run is
// taken over; a peer that says nothing, or nonsense, delays neither side by more than two seconds.
// Back ends: posix/ (with the desktop's event loop serving the socket), scripted/ (`open-request`, `run`).
#pragma once

#include "platform/text.h"

#include <cstdint>

namespace hexlane::platform {

// Gives 1 when this run is now the owner for `home`, 0 when another run is, -1 when it cannot be told (the
// caller goes on as if it were the owner).
int claim_instance(const char* home);
void release_instance();

enum class Handover : int8_t { DONE = 1, REFUSED = 0, HUNG = -1 };

// Hands a file (an absolute path) to the owner and waits until it has taken it in, for as long as the owner
// lives: it may be in a long run, or a question may be up there. REFUSED when it has ended before that.
Handover hand_over_file(const char* path);

// Asks the owner to restore its window and bring it to the front; HUNG when it has not answered within two
// seconds: it does so when it is free.
Handover raise_other_instance();

// The owner's side, told by HANDOVER_MESSAGE: gives 1 and the file that was handed over earliest, 0 when none
// is left. The one that was given before counts as taken in with the next call.
int take_handover(char* path, std::size_t size);

// Starts another program (a name without '/' is looked for beside the running one, then in PATH) with up to
// three arguments (nullptr where there is none) and HEXLANE_HOME set, and
// does not wait for it. Gives 1, or 0 when it cannot be started.
int start_program(const char* path, const char* first, const char* second, const char* third);

}  // namespace hexlane::platform
