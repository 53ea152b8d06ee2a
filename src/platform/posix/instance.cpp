// instance.cpp: one running program for each home, on a real desktop.

#include "platform/instance.h"

#include "platform/posix/instance_socket.h"

namespace hexlane::platform {

int claim_instance(const char* home) {
    return claim_instance_socket(home);
}

void release_instance() {
    release_instance_socket();
}

Handover hand_over_file(const char* path) {
    return hand_file_to_owner(path);
}

Handover raise_other_instance() {
    return raise_owner();
}

int take_handover(char* path, std::size_t size) {
    return take_waiting_file(path, size);
}

}  // namespace hexlane::platform
