// progress.cpp: the line on standard error while a transfer runs.

#include "cli/transfer_run.h"

#include "platform/console/console.h"

#include <cinttypes>
#include <cstdio>

namespace hexlane {

namespace {

bool on_terminal = false;
bool line_open = false;  // the terminal's line holds a progress that is not ended

const char* state_text() {
    if (run.held)
        return "  held by the machine";
    switch (run.status) {
    case SEND_STANDBY:
        return "  waits for the machine's request";
    case RECEIVE_STANDBY:
        return "  waits for the machine";
    default:
        return "";
    }
}

void print_amount(int64_t now_ns) {
    const double seconds = static_cast<double>(now_ns - run.start_tick_ns) / 1e9;
    const double rate = seconds > 0 ? static_cast<double>(run.line_now) / seconds : 0;
    std::fprintf(stderr, "%" PRId64 " bytes", run.file_now);
    if (run.sending && run.file_size > 0)
        std::fprintf(stderr, " of %" PRId64 "  %" PRId64 " %%", run.file_size,
                     run.file_now * 100 / run.file_size);
    std::fprintf(stderr, "  %.0f bytes/s%s", rate, state_text());
}

}  // namespace

void begin_progress() {
    on_terminal = platform::console_is_terminal();
    if (on_terminal)
        return;
    std::fprintf(stderr, run.sending ? "sending %s to %s\n" : "receiving %s from %s\n",
                 run.options.file.c_str(), run.port);
}

void show_progress(int64_t now_ns) {
    if (!on_terminal)
        return;
    line_open = true;
    std::fputs("\r\x1b[K", stderr);
    print_amount(now_ns);
    std::fflush(stderr);
}

void end_progress() {
    if (line_open)
        std::fputc('\n', stderr);
    line_open = false;
}

}  // namespace hexlane
