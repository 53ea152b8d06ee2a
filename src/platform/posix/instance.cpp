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

Handover send_open_request() {
    return ask_instance_owner("open\n");
}

Handover raise_other_instance() {
    return ask_instance_owner("raise\n");
}

}  // namespace hexlane::platform
