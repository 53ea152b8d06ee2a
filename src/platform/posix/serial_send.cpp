// serial_send.cpp: the running write: handing on, pacing, and telling when all has left.
//
// A step looks at the driver's queue, hands on what may be in flight, and plans the next look:
//
//   the line is busy by its rate      when half of what may be in flight has left, or all of the write's rest
//   the driver is behind the rate     after the time that its queue takes, CHECK_MIN to CHECK_MAX
//   it refuses bytes, or is held      at the next edge, which room, an XON or a rise of CTS makes
//   the shift register is busy        after the time of a character
//
// With RTS/CTS the CTS line is looked at every CTS_PERIOD beside that.

#include "platform/posix/serial_line.h"

#include <algorithm>
#include <cerrno>
#include <sys/epoll.h>

namespace hexlane::platform {

namespace {

constexpr int64_t SECOND = 1'000'000'000;
constexpr int64_t CHECK_MIN = 200 * MICROSECOND;
constexpr int64_t CHECK_MAX = 20 * MILLISECOND;

int64_t check_after(int64_t now, int64_t wait) {
    return now + std::clamp(wait, CHECK_MIN, CHECK_MAX);
}

// How long the line is busy with `bytes`, for the pacing.
int64_t pace_time(const Line& line, int bytes) {
    return line.paced ? bytes * line.char_time : 0;
}

bool all_handed(const Sending& sending) {
    return sending.handed == sending.count;
}

void consume_edges(const Line& line) {
    epoll_event edge;
    epoll_wait(line.edges, &edge, 1, 0);
}

void look_at_queue(Line& line, int64_t now) {
    Sending& sending = line.sending;
    if (sending.handed == 0) {
        return;  // what the queue holds, if anything, is not of this write
    }
    sending.queued = std::clamp(line.driver.queued(line.tty), 0, sending.handed);
    const int left = sending.handed - sending.queued;
    if (left > sending.left) {
        sending.left = left;
        sending.moved_at = now;
        sending.busy_until = std::max(sending.busy_until, now + pace_time(line, sending.queued));
    }
}

int bytes_in_flight(const Line& line, int64_t now) {
    const Sending& sending = line.sending;
    const int64_t rest = sending.busy_until - now;
    const int64_t by_rate = rest > 0 ? (rest + line.char_time - 1) / line.char_time : 0;
    return std::max(static_cast<int>(by_rate), sending.queued);
}

void hand_over(Line& line, int64_t now) {
    Sending& sending = line.sending;
    const int in_flight = bytes_in_flight(line, now);
    const int offered = std::min(sending.count - sending.handed, line.in_flight_limit - in_flight);
    if (offered <= 0 || in_flight > line.in_flight_limit / 2) {
        return;
    }
    const ssize_t put =
        line.driver.write(line.tty, sending.data + sending.handed, static_cast<std::size_t>(offered));
    if (put < 0 && errno != EAGAIN && errno != EINTR) {
        note_gone(line);
        return;
    }
    const int taken = std::max(static_cast<int>(put), 0);
    sending.refused = taken < offered;
    if (taken > 0) {
        sending.handed += taken;
        sending.moved_at = now;
        sending.busy_until = std::max(sending.busy_until, now) + pace_time(line, taken);
        look_at_queue(line, now);
    }
}

bool bytes_wait(const Sending& sending) {
    return sending.running && (!all_handed(sending) || sending.queued > 0);
}

bool nothing_moves(const Line& line, int64_t now) {
    const Sending& sending = line.sending;
    return now - std::max(sending.moved_at, sending.busy_until) > HELD_CHARACTERS * line.char_time;
}

bool all_has_left(const Line& line, int64_t now) {
    const Sending& sending = line.sending;
    return all_handed(sending) && sending.queued == 0 && sending.busy_until <= now &&
           line.driver.transmitter_empty(line.tty) != 0;
}

void plan_next_look(Line& line, int64_t now) {
    Sending& sending = line.sending;
    const int64_t due = all_handed(sending) ? sending.busy_until
                                            : sending.busy_until - pace_time(line, line.in_flight_limit / 2);
    sending.watch_edges = false;
    if (due > now) {
        sending.next_look = due;
    } else if (!bytes_wait(sending)) {
        sending.next_look = check_after(now, nothing_moves(line, now) ? CHECK_MAX : line.char_time);
    } else if (sending.refused || nothing_moves(line, now)) {
        sending.watch_edges = true;
        sending.next_look = NEVER;
    } else {
        sending.next_look = check_after(now, sending.queued * line.char_time);
    }
}

// A change is told only when both sides of it were seen while this write ran.
void look_at_cts(Line& line, int64_t now) {
    Sending& sending = line.sending;
    if (!line.settings.hardware_handshake || !line.has_modem_lines || now < sending.cts_next) {
        return;
    }
    const int cts = line.driver.clear_to_send(line.tty);
    if (cts < 0) {
        line.has_modem_lines = false;
        sending.cts_next = NEVER;
        return;
    }
    if (sending.cts >= 0 && cts != sending.cts) {
        line.pending |= EV_CTS;
    }
    sending.cts = cts;
    sending.cts_next = now + CTS_PERIOD;
}

}  // namespace

void set_line_speed(Line& line) {
    const LineSettings& settings = line.settings;
    const int bits = 1 + settings.byte_size + (settings.parity == PARITY_NONE ? 0 : 1) +
                     (settings.stop_bits == STOP_BITS_ONE ? 1 : 2);
    line.char_time = std::max<int64_t>(bits * SECOND / std::max(settings.baud_rate, 1u), 1);
    line.in_flight_limit = line.paced ? static_cast<int>(std::clamp<int64_t>(IN_FLIGHT_TIME / line.char_time,
                                                                             IN_FLIGHT_MIN, IN_FLIGHT_MAX))
                                      : std::numeric_limits<int>::max();
}

void start_write(Line& line, const uint8_t* data, int count) {
    const int64_t now = now_ns();
    const int64_t busy_until = line.sending.busy_until;
    line.sending = {};
    line.sending.data = data;
    line.sending.count = count;
    line.sending.running = true;
    line.sending.busy_until = std::max(busy_until, now);
    line.sending.moved_at = now;
    line.sending.cts = -1;
}

void stop_write(Line& line) {
    line.sending.running = false;
    line.sending.data = nullptr;
    line.sending.queued = 0;
    line.sending.watch_edges = false;
    line.sending.busy_until = 0;
}

void send_step(Line& line) {
    Sending& sending = line.sending;
    if (!sending.running || line.gone) {
        sending.watch_edges = false;
        sending.next_look = NEVER;
        return;
    }
    // Before the look: an edge that comes behind it ends the next sleep.
    if (sending.watch_edges) {
        consume_edges(line);
    }
    const int64_t now = now_ns();
    look_at_cts(line, now);
    look_at_queue(line, now);
    hand_over(line, now);
    if (all_has_left(line, now)) {
        sending.running = false;
        sending.data = nullptr;
        line.pending |= EV_TXEMPTY;
        sending.next_look = NEVER;
        return;
    }
    plan_next_look(line, now);
    if (line.settings.hardware_handshake && line.has_modem_lines) {
        sending.next_look = std::min(sending.next_look, sending.cts_next);
    }
}

int bytes_that_left(Line& line) {
    if (line.sending.running && !line.gone) {
        look_at_queue(line, now_ns());
    }
    return line.sending.handed - line.sending.queued;
}

bool line_is_held(Line& line) {
    if (!line.sending.running || line.gone) {
        return false;
    }
    const int64_t now = now_ns();
    look_at_queue(line, now);
    return bytes_wait(line.sending) && nothing_moves(line, now);
}

}  // namespace hexlane::platform
