// message_queue.cpp: posting, serving, timers and the scripted clock.

#include "platform/scripted/message_queue.h"

#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/scripted/desktop_state.h"
#include "platform/scripted/record.h"

#include <algorithm>
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

struct Timer {
    WindowHandle window;
    int id;
    int64_t period_ms;
    int64_t due_ms;
};

std::deque<Message> queue;
std::vector<Timer> timers;  // in the order in which they were made
int64_t now_ms = 0;
bool quitting = false;
int quit_code = 0;

Timer* find_timer(WindowHandle window, int id) {
    const auto found = std::find_if(timers.begin(), timers.end(), [&](const Timer& timer) {
        return timer.window == window && timer.id == id;
    });
    return found != timers.end() ? &*found : nullptr;
}

// The timer that falls due first, the older one of two; nullptr when there is none up to `limit_ms`.
Timer* next_timer(int64_t limit_ms) {
    Timer* next = nullptr;
    for (Timer& timer : timers) {
        if (timer.due_ms <= limit_ms && (next == nullptr || timer.due_ms < next->due_ms)) {
            next = &timer;
        }
    }
    return next;
}

}  // namespace

void post_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    queue.push_back({window, message, first, second});
}

int64_t send_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    return deliver(window, message, first, second);
}

void serve_messages() {
    for (int served = 0; !queue.empty(); served++) {
        if (served == MESSAGE_FLOOD) {
            stop_run("the program posts messages without end");
        }
        const Message message = queue.front();
        queue.pop_front();
        deliver(message.window, message.message, message.first, message.second);
    }
}

bool messages_are_waiting() {
    return !queue.empty();
}

void post_quit(int code) {
    quitting = true;
    quit_code = code;
}

bool quit_asked(int* code) {
    *code = quit_code;
    return quitting;
}

void start_timer(WindowHandle window, int id, int period_ms) {
    const int64_t period = std::max(period_ms, 1);
    Timer* timer = find_timer(window, id);
    if (timer == nullptr) {
        timer = &timers.emplace_back(Timer{window, id, 0, 0});
    }
    timer->period_ms = period;
    timer->due_ms = now_ms + period;
}

void kill_timer(WindowHandle window, int id) {
    std::erase_if(timers, [&](const Timer& timer) { return timer.window == window && timer.id == id; });
}

int timer_period_of(WindowHandle window, int id) {
    const Timer* timer = find_timer(window, id);
    return timer != nullptr ? static_cast<int>(timer->period_ms) : 0;
}

// A timer's procedure may bring up a box in which the clock is moved on further: then this call finds the
// time behind its own goal and must not turn it back.
void move_clock(int64_t ms, int64_t* elapsed, bool (*stop)()) {
    const int64_t start = now_ms;
    const int64_t goal = start + ms;
    serve_messages();
    while (const Timer* due = next_timer(goal)) {
        const WindowHandle window = due->window;
        const int id = due->id;
        now_ms = std::max(now_ms, due->due_ms);
        *elapsed = now_ms - start;
        find_timer(window, id)->due_ms += due->period_ms;
        deliver(window, WM_TIMER, id, 0);
        serve_messages();
        if (stop()) {
            return;
        }
    }
    now_ms = std::max(now_ms, goal);
    *elapsed = ms;
}

int64_t clock_ms() {
    return now_ms;
}

void forget_window(WindowHandle window) {
    std::erase_if(queue, [&](const Message& message) { return message.window == window; });
    std::erase_if(timers, [&](const Timer& timer) { return timer.window == window; });
}

void wipe_messages() {
    queue.clear();
    timers.clear();
    now_ms = 0;
    quitting = false;
    quit_code = 0;
}

}  // namespace hexlane::platform
