// message_queue.h: the one queue of posted messages, and the messages that workers send.
// Order: before a line of the script and before anything falls due, workers have gone as far as they can and
// everything posted has been served. Main thread only, but for post_message and send_message of desktop.h.
#pragma once

#include "platform/messages.h"

#include <functional>

namespace hexlane::platform {

// Lets workers run and serves messages, and those that they post, until none is left and all workers wait.
// More than MESSAGE_FLOOD steps in one go stop the run: the program would never come to rest.
void serve_messages();
bool messages_are_waiting();
constexpr int MESSAGE_FLOOD = 1000000;

// Serves one message that a worker has sent and waits for. Gives false when there is none.
bool serve_sent_message();

// Workers that have sent a message go on with 0 for an answer.
void drop_sent_messages();

// Does `act` in the call of pump_one_message that is the `count`-th from now on, in place of a message.
void act_at_pump(int count, const std::function<void()>& act);
bool acts_wait_for_pump();

// A window is gone: its messages go with it.
void forget_messages(WindowHandle window);

// post_quit has been called; `code` takes its code.
bool quit_asked(int* code);

void wipe_messages();

}  // namespace hexlane::platform
