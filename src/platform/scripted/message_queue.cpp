// message_queue.cpp: posting, sending from workers, serving, and the pump of a long run.

#include "platform/scripted/message_queue.h"

#include "platform/desktop.h"
#include "platform/scripted/desktop_state.h"
#include "platform/scripted/record.h"
#include "platform/scripted/workers.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <vector>

namespace hexlane::platform {

namespace {

struct Message {
    WindowHandle window;
    uint32_t message;
    int64_t first;
    int64_t second;
};

// A message that a worker has sent; it lives on the worker's stack until it is answered.
struct SentMessage {
    Message message;
    int64_t result;
    bool served;
};

struct PumpAct {
    int left;  // pumps from now on
    std::function<void()> act;
};

std::deque<Message> queue;
std::deque<SentMessage*> sent;
std::vector<PumpAct> pump_acts;
bool quitting = false;
int quit_code = 0;

int64_t run_message(const Message& message) {
    return deliver(message.window, message.message, message.first, message.second);
}

void answer(SentMessage* message, int64_t result) {
    message->result = result;
    message->served = true;
    wake_workers(message);
}

bool serve_posted_message() {
    if (queue.empty()) {
        return false;
    }
    const Message message = queue.front();
    queue.pop_front();
    run_message(message);
    return true;
}

// Counts a pump; gives whether an act was laid ready for it.
bool act_for_this_pump() {
    std::function<void()> act;
    for (PumpAct& waiting : pump_acts) {
        waiting.left--;
    }
    const auto due = std::find_if(pump_acts.begin(), pump_acts.end(),
                                  [](const PumpAct& waiting) { return waiting.left <= 0; });
    if (due == pump_acts.end()) {
        return false;
    }
    act.swap(due->act);
    pump_acts.erase(due);
    act();
    return true;
}

}  // namespace

void post_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    queue.push_back({window, message, first, second});
}

int64_t send_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    if (!on_worker()) {
        return deliver(window, message, first, second);
    }
    SentMessage own = {{window, message, first, second}, 0, false};
    sent.push_back(&own);
    while (!own.served) {
        worker_waits_for(&own);
    }
    return own.result;
}

bool serve_sent_message() {
    if (sent.empty()) {
        return false;
    }
    SentMessage* message = sent.front();
    sent.pop_front();
    answer(message, run_message(message->message));
    return true;
}

void drop_sent_messages() {
    for (SentMessage* message : sent) {
        answer(message, 0);
    }
    sent.clear();
}

void serve_messages() {
    for (int served = 0; run_ready_worker() || serve_sent_message() || serve_posted_message(); served++) {
        if (served == MESSAGE_FLOOD) {
            stop_run("the program posts messages without end");
        }
    }
}

bool messages_are_waiting() {
    return !queue.empty() || !sent.empty();
}

// Two acts for the same pump follow one another.
bool pump_one_message() {
    if (act_for_this_pump()) {
        return true;
    }
    while (run_ready_worker()) {
    }
    return serve_sent_message() || serve_posted_message();
}

void act_at_pump(int count, const std::function<void()>& act) {
    pump_acts.push_back({count, act});
}

bool acts_wait_for_pump() {
    return !pump_acts.empty();
}

void post_quit(int code) {
    quitting = true;
    quit_code = code;
}

bool quit_asked(int* code) {
    *code = quit_code;
    return quitting;
}

void forget_messages(WindowHandle window) {
    std::erase_if(queue, [&](const Message& message) { return message.window == window; });
}

void wipe_messages() {
    queue.clear();
    pump_acts.clear();
    quitting = false;
    quit_code = 0;
}

}  // namespace hexlane::platform
