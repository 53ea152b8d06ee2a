// instance_server.h: the owner's side of instance.h for a desktop with an event loop of its own.
#pragma once

namespace hexlane::platform {

enum class InstanceRequest { OPEN, RAISE };

// The desktop's part of the work: runs on the main thread, from serve_instance, after "accepted" has been
// answered; "done" is answered when it returns.
void set_instance_handler(void (*handler)(InstanceRequest request));

// The listening socket, to be watched for reading; -1 when there is none.
int instance_socket();

// Takes one waiting peer: checks its user, reads its word within a bounded time, answers, runs the handler.
void serve_instance();

}  // namespace hexlane::platform
