// instance_server.h: the owner's side of instance.h for a desktop with an event loop of its own.
#pragma once

namespace hexlane::platform {

enum class InstanceRequest { OPEN, RAISE };

// The desktop's part of the work, on the main thread: OPEN tells that a file waits for take_handover, RAISE
// brings the window to the front.
void set_instance_handler(void (*handler)(InstanceRequest request));

// The listening socket, to be watched for reading; -1 when there is none.
int instance_socket();

// Takes one waiting peer: checks its user, reads its request within a bounded time, answers, runs the
// handler. Without a handler peers are sent away.
void serve_instance();

}  // namespace hexlane::platform
