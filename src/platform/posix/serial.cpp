// serial.cpp: the operations of serial.h over tty devices and ptys. The worker's steps are in serial_send.cpp
// and serial_wait.cpp. This file holds the interface and nothing else, so that a program with another serial
// line of its own never links it.

#include "platform/serial.h"

#include "platform/posix/serial_line.h"
#include "platform/posix/serial_problem.h"
#include "platform/posix/serial_tty.h"
#include "platform/process.h"
#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

Line lines[PORT_COUNT];

Line* line_of(LineHandle handle) {
    return handle >= 0 && handle < PORT_COUNT ? &lines[handle] : nullptr;
}

// An open line, locked. `line` is nullptr when the handle means none.
struct OpenLine {
    explicit OpenLine(LineHandle handle) : line(line_of(handle)) {
        if (line != nullptr) {
            guard = std::unique_lock(line->lock);
            if (line->tty < 0) {
                line = nullptr;
            }
        }
    }
    Line* line;
    std::unique_lock<std::mutex> guard;
};

// A worker that is awake looks at the line before it sleeps again; most writes are its own.
void wake_worker(const Line& line) {
    if (line.asleep) {
        const uint64_t one = 1;
        static_cast<void>(!write(line.wake, &one, sizeof one));
    }
}

bool pacing_is_on() {
    char value[8];
    return !environment_value("HEXLANE_LINE_PACING", value, sizeof value) || std::strcmp(value, "off") != 0;
}

// The two descriptors beside the tty. 0 with errno set.
int make_wakers(int tty, int* wake, int* edges) {
    *wake = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    *edges = epoll_create1(EPOLL_CLOEXEC);
    epoll_event room{};
    room.events = EPOLLOUT | EPOLLET;
    return *wake >= 0 && *edges >= 0 && epoll_ctl(*edges, EPOLL_CTL_ADD, tty, &room) == 0 ? 1 : 0;
}

void close_wakers(int wake, int edges) {
    if (wake >= 0) {
        close(wake);
    }
    if (edges >= 0) {
        close(edges);
    }
}

void reset_line(Line& line) {
    line.asleep = false;
    line.driver = line_driver;
    line.settings = {};
    line.has_modem_lines = true;
    line.paced = pacing_is_on();
    line.mask = 0;
    line.pending = 0;
    line.gone = false;
    line.errors_before = {};
    line.driver.error_counts(line.tty, &line.errors_before);
    line.ring_first = 0;
    line.ring_used = 0;
    line.sending = {};
}

// Output is dropped only where the driver tells that bytes wait, and those are of the write that runs. What a
// pty has taken is on the line: a flush would take what the machine has not read yet, and with it the end of
// writes that were told as sent.
bool drop_output(Line& line) {
    const bool waits = line.sending.running && line.driver.queued(line.tty) > 0;
    stop_write(line);
    return waits;
}

void drop_everything(Line& line) {
    flush_tty(line.tty, drop_output(line));
    line.ring_used = 0;
    line.pending &= EV_GONE;
    wake_worker(line);
}

}  // namespace

LineHandle line_open(int port) {
    clear_line_problem();
    char device[PATH_SIZE];
    if (!line_device(port, device, sizeof device)) {
        return NO_LINE;
    }
    const int tty = open_tty(device);
    if (tty < 0) {
        return NO_LINE;
    }
    int wake = -1;
    int edges = -1;
    if (!make_wakers(tty, &wake, &edges)) {
        note_device_error(device, errno);
        close_wakers(wake, edges);
        close_tty(tty, false);
        return NO_LINE;
    }
    // A device opens once only, so a record is free unless COM numbers have changed their devices.
    for (int i = 0; i < PORT_COUNT; i++) {
        const std::lock_guard guard(lines[i].lock);
        if (lines[i].tty < 0) {
            lines[i].tty = tty;
            lines[i].wake = wake;
            lines[i].edges = edges;
            reset_line(lines[i]);
            copy_text(lines[i].device, sizeof lines[i].device, device);
            return i;
        }
    }
    note_line_problem("Too many serial lines are open.");
    close_wakers(wake, edges);
    close_tty(tty, false);
    return NO_LINE;
}

int line_configure(LineHandle handle, const LineSettings& settings) {
    clear_line_problem();
    const OpenLine open(handle);
    if (open.line == nullptr) {
        return note_line_problem("The serial line is not open.");
    }
    LineSettings wanted = settings;
    if (!configure_tty(open.line->tty, open.line->device, &wanted)) {
        return 0;
    }
    open.line->settings = wanted;
    set_line_speed(*open.line);
    return 1;
}

int line_settings(LineHandle handle, LineSettings* settings) {
    const OpenLine open(handle);
    if (open.line == nullptr) {
        return 0;
    }
    *settings = open.line->settings;
    return 1;
}

void line_set_mask(LineHandle handle, uint32_t mask) {
    const OpenLine open(handle);
    if (open.line != nullptr) {
        open.line->mask = mask;
        wake_worker(*open.line);
    }
}

int line_wait_event(LineHandle handle, uint32_t* events) {
    OpenLine open(handle);
    *events = 0;
    if (open.line == nullptr) {
        return 0;
    }
    Line& line = *open.line;
    while (line.mask != 0) {
        send_step(line);
        *events = line.pending & (line.mask | EV_GONE);
        if (*events != 0) {
            line.pending &= ~*events;
            return 1;
        }
        if (line.gone) {
            return 0;
        }
        sleep_on_line(line, open.guard, line.sending.next_look);
    }
    return 1;
}

int line_delay(LineHandle handle, int ms) {
    const int64_t until = now_ns() + ms * MILLISECOND;
    OpenLine open(handle);
    if (open.line == nullptr) {
        return 0;
    }
    Line& line = *open.line;
    while (now_ns() < until) {
        if (line.mask == 0 || line.gone) {
            return 0;
        }
        send_step(line);
        sleep_on_line(line, open.guard, std::min(until, line.sending.next_look));
    }
    return line.mask == 0 || line.gone ? 0 : 1;
}

int line_queue_length(LineHandle handle) {
    const OpenLine open(handle);
    return open.line != nullptr ? open.line->ring_used : 0;
}

int line_read(LineHandle handle, void* buffer, int size) {
    const OpenLine open(handle);
    if (open.line == nullptr) {
        return 0;
    }
    Line& line = *open.line;
    const int count = std::clamp(size, 0, line.ring_used);
    const int straight = std::min(count, RECEIVE_RING - line.ring_first);
    std::memcpy(buffer, line.ring + line.ring_first, static_cast<std::size_t>(straight));
    std::memcpy(static_cast<uint8_t*>(buffer) + straight, line.ring,
                static_cast<std::size_t>(count - straight));
    const bool was_full = line.ring_used == RECEIVE_RING;
    line.ring_first = (line.ring_first + count) % RECEIVE_RING;
    line.ring_used -= count;
    if (was_full) {
        wake_worker(line);  // it doesn't look for bytes while it has no room for them
    }
    return count;
}

int line_write(LineHandle handle, const void* data, int count) {
    const OpenLine open(handle);
    if (open.line == nullptr || open.line->gone || open.line->sending.running || count < 0) {
        return 0;
    }
    start_write(*open.line, static_cast<const uint8_t*>(data), count);
    wake_worker(*open.line);
    return 1;
}

int line_written(LineHandle handle) {
    const OpenLine open(handle);
    return open.line != nullptr ? bytes_that_left(*open.line) : 0;
}

bool line_held(LineHandle handle) {
    const OpenLine open(handle);
    return open.line != nullptr && line_is_held(*open.line);
}

int line_errors(LineHandle handle, LineErrors* errors) {
    const OpenLine open(handle);
    LineErrors now{};
    if (open.line == nullptr || !open.line->driver.error_counts(open.line->tty, &now)) {
        return 0;
    }
    const LineErrors& before = open.line->errors_before;
    *errors = {now.parity - before.parity, now.framing - before.framing, now.overrun - before.overrun};
    return 1;
}

void line_set_dtr(LineHandle handle, bool on) {
    const OpenLine open(handle);
    if (open.line != nullptr) {
        set_tty_dtr(open.line->tty, on);
    }
}

void line_purge(LineHandle handle) {
    const OpenLine open(handle);
    if (open.line != nullptr) {
        drop_everything(*open.line);
    }
}

void line_close(LineHandle handle) {
    const OpenLine open(handle);
    if (open.line != nullptr) {
        const bool flush_output = drop_output(*open.line);
        close_wakers(open.line->wake, open.line->edges);
        close_tty(open.line->tty, flush_output);
        open.line->tty = -1;
    }
}

}  // namespace hexlane::platform
