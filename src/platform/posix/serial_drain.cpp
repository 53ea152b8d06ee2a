#include "platform/posix/serial_drain.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <termios.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

constexpr int64_t DRAIN_LIMIT = 5'000'000;  // ns; the line's lock is held meanwhile
constexpr int64_t SECOND = 1'000'000'000;

// Its handler does nothing: it is there to end a wait of the thread that set the timer.
int timer_signal() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigemptyset(&action.sa_mask);
    sigaction(SIGRTMIN, &action, nullptr);
    return SIGRTMIN;
}

}  // namespace

int end_in_time(int (*call)(int file), int file, int64_t limit) {
    static const int SIGNAL = timer_signal();
    sigevent to_this_thread{};
    to_this_thread.sigev_notify = SIGEV_THREAD_ID;
    to_this_thread.sigev_signo = SIGNAL;
    to_this_thread._sigev_un._tid = gettid();
    timer_t timer;
    if (timer_create(CLOCK_MONOTONIC, &to_this_thread, &timer) != 0) {
        return 1;
    }
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGNAL);
    pthread_sigmask(SIG_UNBLOCK, &signals, &before);
    // Again and again: the first one may come before the call has begun to wait.
    const timespec period = {limit / SECOND, limit % SECOND};
    const itimerspec times = {period, period};
    timer_settime(timer, 0, &times, nullptr);
    const int result = call(file);
    const int error = errno;
    timer_delete(timer);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return result < 0 && error == EINTR ? 0 : 1;
}

int drain_tty(int tty) {
    return end_in_time(tcdrain, tty, DRAIN_LIMIT);
}

}  // namespace hexlane::platform
