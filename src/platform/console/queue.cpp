// queue.cpp: posting, sending, timers and the loop that serves them.

#include "platform/console/queue.h"

#include "platform/console/console.h"
#include "platform/desktop.h"
#include "platform/posix/threads_hook.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace hexlane::platform {

namespace {

struct Message {
    WindowHandle window;
    uint32_t message;
    int64_t first;
    int64_t second;
};

// A message that a worker has sent; it lives on the worker's stack until it is served.
struct Sent {
    Message message;
    int64_t result;
    bool served;
};

struct Timer {
    WindowHandle window;
    int id;
    int64_t period_ns;
    int64_t due_ns;
};

constexpr int64_t NS_PER_MS = 1'000'000;
constexpr int64_t NEVER = INT64_MAX;

std::mutex queue_lock;  // guards the next three
std::deque<Message> posted;
std::deque<Sent*> sent;
std::condition_variable sent_was_served;

// Main thread only.
std::vector<WindowProcedure> procedures;
std::vector<Timer> timers;  // in the order in which they were made
bool quitting = false;
int quit_code = 0;

std::thread::id main_thread;
int wake_event = -1;
std::atomic<bool> something_waits = false;  // since the pump looked last; signal handlers set it too
static_assert(std::atomic<bool>::is_always_lock_free);

int64_t time_ns() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

int64_t deliver(const Message& m) {
    const auto place = static_cast<std::size_t>(m.window) - 1;
    return place < procedures.size() ? procedures[place](m.window, m.message, m.first, m.second) : 0;
}

template <typename Item>
bool take_first(std::deque<Item>* queue, Item* item) {
    const std::lock_guard guard(queue_lock);
    if (queue->empty())
        return false;
    *item = queue->front();
    queue->pop_front();
    return true;
}

void serve_sent() {
    Sent* waiting = nullptr;
    while (take_first(&sent, &waiting)) {
        waiting->result = deliver(waiting->message);
        const std::lock_guard guard(queue_lock);
        waiting->served = true;
        sent_was_served.notify_all();
    }
}

bool serve_one_posted() {
    Message message;
    if (!take_first(&posted, &message))
        return false;
    deliver(message);
    return true;
}

// The timer that is due first, the older one of two.
Timer* next_timer() {
    const auto first =
        std::min_element(timers.begin(), timers.end(),
                         [](const Timer& left, const Timer& right) { return left.due_ns < right.due_ns; });
    return first != timers.end() ? &*first : nullptr;
}

// A timer that is late skips the ticks that it has missed.
bool serve_one_timer() {
    Timer* timer = next_timer();
    const int64_t now = time_ns();
    if (timer == nullptr || timer->due_ns > now)
        return false;
    timer->due_ns = std::max(timer->due_ns + timer->period_ns, now);
    deliver({timer->window, WM_TIMER, timer->id, 0});
    return true;
}

void sleep_until_something() {
    const Timer* timer = next_timer();
    const int64_t rest = timer != nullptr ? std::max<int64_t>(timer->due_ns - time_ns(), 0) : NEVER;
    const timespec limit = {rest / 1'000'000'000, rest % 1'000'000'000};
    pollfd woken = {wake_event, POLLIN, 0};
    if (ppoll(&woken, 1, timer != nullptr ? &limit : nullptr, nullptr) <= 0)
        return;
    uint64_t count = 0;
    static_cast<void>(!read(wake_event, &count, sizeof count));
}

Timer* find_timer(WindowHandle window, int id) {
    const auto found = std::find_if(timers.begin(), timers.end(), [&](const Timer& timer) {
        return timer.window == window && timer.id == id;
    });
    return found != timers.end() ? &*found : nullptr;
}

}  // namespace

void start_console() {
    main_thread = std::this_thread::get_id();
    wake_event = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (wake_event < 0) {
        std::perror("cannot make the message queue");
        std::abort();
    }
    serve_sent_messages = serve_sent;
}

WindowHandle make_console_window(WindowProcedure procedure) {
    procedures.push_back(procedure);
    return static_cast<WindowHandle>(procedures.size());
}

void wake_console() {
    something_waits = true;
    const uint64_t one = 1;
    const int saved = errno;
    static_cast<void>(!write(wake_event, &one, sizeof one));
    errno = saved;
}

void post_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    {
        const std::lock_guard guard(queue_lock);
        posted.push_back({window, message, first, second});
    }
    wake_console();
}

int64_t send_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    if (std::this_thread::get_id() == main_thread)
        return deliver({window, message, first, second});
    Sent own = {{window, message, first, second}, 0, false};
    std::unique_lock guard(queue_lock);
    sent.push_back(&own);
    wake_console();
    sent_was_served.wait(guard, [&own] { return own.served; });
    return own.result;
}

void start_timer(WindowHandle window, int id, int period_ms) {
    const int64_t period = std::max(period_ms, 1) * NS_PER_MS;
    Timer* timer = find_timer(window, id);
    if (timer == nullptr)
        timer = &timers.emplace_back(Timer{window, id, 0, 0});
    timer->period_ns = period;
    timer->due_ns = time_ns() + period;
}

void kill_timer(WindowHandle window, int id) {
    std::erase_if(timers, [&](const Timer& timer) { return timer.window == window && timer.id == id; });
}

int run_message_loop() {
    while (!quitting) {
        if (!pump_one_message())
            sleep_until_something();
    }
    quitting = false;
    return quit_code;
}

// What was posted behind the message that is served waits for the next call.
bool pump_one_message() {
    if (!something_waits.load(std::memory_order_relaxed) && timers.empty())
        return false;
    if (something_waits.exchange(false)) {
        post_waiting_signals();
        serve_sent();
        if (serve_one_posted()) {
            something_waits = true;
            return true;
        }
    }
    return serve_one_timer();
}

void post_quit(int code) {
    quitting = true;
    quit_code = code;
}

}  // namespace hexlane::platform
