// serial_wait.cpp: the worker's one sleep, and what comes in.

#include "platform/posix/serial_line.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

// There is room for them.
void put_in_ring(Line& line, const uint8_t* bytes, int count) {
    const int start = (line.ring_first + line.ring_used) % RECEIVE_RING;
    const int straight = std::min(count, RECEIVE_RING - start);
    std::memcpy(line.ring + start, bytes, static_cast<std::size_t>(straight));
    std::memcpy(line.ring, bytes + straight, static_cast<std::size_t>(count - straight));
    line.ring_used += count;
}

int room_in_ring(const Line& line) {
    return RECEIVE_RING - line.ring_used;
}

// Takes what has come, up to INTAKE bytes, into a ring that has room. 0 when there was nothing.
int take_in(Line& line) {
    uint8_t piece[INTAKE];
    const int most = std::min(INTAKE, room_in_ring(line));
    const ssize_t got = read(line.tty, piece, static_cast<std::size_t>(most));
    if (got <= 0) {
        if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
            note_gone(line);
        }
        return 0;
    }
    const auto count = static_cast<std::size_t>(got);
    line.pending |= EV_RXCHAR;
    if (std::memchr(piece, line.settings.event_char, count) != nullptr) {
        line.pending |= EV_RXFLAG;
    }
    put_in_ring(line, piece, static_cast<int>(count));
    return 1;
}

// How long until `until`; nullptr for ever.
const timespec* time_left(int64_t until, timespec* left) {
    if (until == NEVER) {
        return nullptr;
    }
    const int64_t wait = std::max<int64_t>(until - now_ns(), 0);
    left->tv_sec = wait / 1'000'000'000;
    left->tv_nsec = wait % 1'000'000'000;
    return left;
}

}  // namespace

int64_t now_ns() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

void note_gone(Line& line) {
    if (!line.gone) {
        line.gone = true;
        line.pending |= EV_GONE;
        line.sending.running = false;
        line.sending.data = nullptr;
    }
}

void sleep_on_line(Line& line, std::unique_lock<std::mutex>& guard, int64_t until) {
    // What a full ring has no room for waits in the driver, which stops the machine when that is full too.
    const bool full = room_in_ring(line) == 0;
    pollfd files[] = {{line.gone ? -1 : line.tty, static_cast<short>(full ? 0 : POLLIN), 0},
                      {line.wake, POLLIN, 0},
                      {line.sending.watch_edges ? line.edges : -1, POLLIN, 0}};
    line.asleep = true;
    guard.unlock();
    timespec left;
    const int ready = ppoll(files, 3, time_left(until, &left), nullptr);
    guard.lock();
    line.asleep = false;
    if (ready <= 0) {
        return;
    }
    if (files[1].revents != 0) {
        uint64_t count;
        static_cast<void>(!read(line.wake, &count, sizeof count));
    }
    const bool took = files[0].revents != 0 && !full && take_in(line);
    if (!took && (files[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
        note_gone(line);
    }
}

}  // namespace hexlane::platform
