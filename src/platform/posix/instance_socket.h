// instance_socket.h: the socket behind instance.h, under names that no desktop defines, for the files of this
// folder and their tests. The owner's side of a request is in instance_server.h.
//
// Talk on the socket, each word ended by LF: the peer says "raise", or "open" and a length and right behind
// it a path of so many bytes; the owner says "accepted" when it has heard that, and "done" when the window is
// in front, or the file has been taken in. Anything else is answered by closing. An owner that ends closes
// too.
#pragma once

#include "platform/instance.h"

namespace hexlane::platform {

// Either side waits this long for a word that must come at once.
constexpr int INSTANCE_WAIT_MS = 2000;

// claim_instance and release_instance.
int claim_instance_socket(const char* home);
void release_instance_socket();

// hand_over_file and raise_other_instance, to the owner of the home that was claimed last. REFUSED when there
// is none any more, when it is another user's, or when it goes away before it is done.
Handover hand_file_to_owner(const char* path);
Handover raise_owner();

// take_handover.
int take_waiting_file(char* path, std::size_t size);

}  // namespace hexlane::platform
