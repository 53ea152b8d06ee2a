// signals.cpp: SIGINT and SIGTERM as messages.

#include "platform/console/console.h"
#include "platform/console/queue.h"
#include "platform/desktop.h"

#include <csignal>
#include <initializer_list>

namespace hexlane::platform {

namespace {

volatile std::sig_atomic_t signal_waits = 0;  // number of the last signal that is not posted yet
WindowHandle signal_window = NO_WINDOW;
uint32_t signal_message = 0;

void note_signal(int number) {
    signal_waits = number;
    wake_console();
}

}  // namespace

void post_signals(WindowHandle window, uint32_t message) {
    signal_window = window;
    signal_message = message;
    struct sigaction action = {};
    action.sa_handler = note_signal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int number : {SIGINT, SIGTERM})
        sigaction(number, &action, nullptr);
}

void post_waiting_signals() {
    const int number = signal_waits;
    if (number == 0)
        return;
    signal_waits = 0;
    post_message(signal_window, signal_message, number, 0);
}

}  // namespace hexlane::platform
