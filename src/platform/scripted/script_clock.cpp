// script_clock.cpp: the scripted clock and the timers on it. Chance comes from the system, as everywhere
// (posix/random.cpp).

#include "platform/scripted/script_clock.h"

#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/scripted/desktop_state.h"
#include "platform/scripted/line_model.h"
#include "platform/scripted/message_queue.h"

#include <algorithm>
#include <ctime>
#include <vector>

namespace hexlane::platform {

namespace {

// What tick_ms says at the start: not 0, so that a time that was never taken shows as long ago.
constexpr int64_t FIRST_TICK_MS = 1000000;

struct Timer {
    WindowHandle window;
    int id;
    int64_t period_ns;
    Due due;
};

std::vector<Timer> timers;  // in the order in which they were made
int64_t now_ns = 0;
int created = 0;

Timer* find_timer(WindowHandle window, int id) {
    const auto found = std::find_if(timers.begin(), timers.end(), [&](const Timer& timer) {
        return timer.window == window && timer.id == id;
    });
    return found != timers.end() ? &*found : nullptr;
}

// The timer that falls due first, the older one of two; nullptr when there is none.
Timer* next_timer() {
    const auto next =
        std::min_element(timers.begin(), timers.end(), [](const Timer& left, const Timer& right) {
            return is_before(left.due, right.due);
        });
    return next != timers.end() ? &*next : nullptr;
}

// Takes the clock to what falls due next, if that is not behind `goal`, and lets it happen. A handler may
// have moved the clock on further already.
bool run_next_due(int64_t goal, int64_t start, int64_t* elapsed_ms) {
    Timer* timer = next_timer();
    const Due line = next_line_due();
    const bool is_timer = timer != nullptr && is_before(timer->due, line);
    const int64_t due_ns = is_timer ? timer->due.time_ns : line.time_ns;
    if (due_ns > goal) {
        return false;
    }
    now_ns = std::max(now_ns, due_ns);
    *elapsed_ms = (now_ns - start) / NS_PER_MS;
    if (!is_timer) {
        run_line_event(line);
        return true;
    }
    const WindowHandle window = timer->window;
    const int id = timer->id;
    timer->due.time_ns += timer->period_ns;
    deliver(window, WM_TIMER, id, 0);
    return true;
}

}  // namespace

uint32_t tick_ms() {
    return static_cast<uint32_t>(FIRST_TICK_MS + now_ns / NS_PER_MS);
}

void time_of_day(char* text, std::size_t size) {
    constexpr std::time_t FIRST_SECOND = 946684800;  // 2000-01-01 00:00:00
    const std::time_t now = FIRST_SECOND + static_cast<std::time_t>(now_ns / (1000 * NS_PER_MS));
    tm shown;
    gmtime_r(&now, &shown);
    if (std::strftime(text, size, "%Y-%m-%d %H:%M:%S", &shown) == 0) {
        text[0] = '\0';
    }
}

void start_timer(WindowHandle window, int id, int period_ms) {
    Timer* timer = find_timer(window, id);
    if (timer == nullptr) {
        timer = &timers.emplace_back(Timer{window, id, 0, {0, next_creation_number()}});
    }
    timer->period_ns = std::max(period_ms, 1) * NS_PER_MS;
    timer->due.time_ns = now_ns + timer->period_ns;
}

void kill_timer(WindowHandle window, int id) {
    std::erase_if(timers, [&](const Timer& timer) { return timer.window == window && timer.id == id; });
}

int timer_period_of(WindowHandle window, int id) {
    const Timer* timer = find_timer(window, id);
    return timer != nullptr ? static_cast<int>(timer->period_ns / NS_PER_MS) : 0;
}

int64_t clock_ns() {
    return now_ns;
}

int next_creation_number() {
    return ++created;
}

// A timer's procedure may bring up a box in which the clock is moved on further: then this call finds the
// time behind its own goal and must not turn it back.
void move_clock(int64_t ns, int64_t* elapsed_ms, const std::function<bool()>& stop) {
    const int64_t start = now_ns;
    const int64_t goal = start + ns;
    serve_messages();
    while (run_next_due(goal, start, elapsed_ms)) {
        serve_messages();
        if (stop()) {
            return;
        }
    }
    now_ns = std::max(now_ns, goal);
    *elapsed_ms = ns / NS_PER_MS;
}

void forget_timers(WindowHandle window) {
    std::erase_if(timers, [&](const Timer& timer) { return timer.window == window; });
}

void wipe_clock() {
    timers.clear();
    now_ns = 0;
}

}  // namespace hexlane::platform
