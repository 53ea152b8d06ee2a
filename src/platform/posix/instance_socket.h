// instance_socket.h: the socket behind instance.h, under names that no desktop defines, for the files of this
// folder and their tests. The owner's side of a request is in instance_server.h.
//
// Talk on the socket, each word ended by LF: the peer says "open" or "raise"; the owner says "accepted" at
// once and "done" when the request is done. Anything else is answered by closing.
#pragma once

#include "platform/instance.h"

namespace hexlane::platform {

// Either side waits this long for a word that must come at once.
constexpr int INSTANCE_WAIT_MS = 2000;

// claim_instance and release_instance.
int claim_instance_socket(const char* home);
void release_instance_socket();

// Says `word` to the owner of the home that was claimed last. REFUSED when there is none any more, when it is
// another user's, or when it goes away before it is done.
Handover ask_instance_owner(const char* word);

}  // namespace hexlane::platform
