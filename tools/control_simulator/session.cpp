#include "session.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace simulator {

namespace {

constexpr int64_t MS = 1000000;       // ns
constexpr int64_t SETTLE = 100 * MS;  // what a closed pty may still bring
constexpr int64_t DC1_AGAIN = 1000 * MS;
constexpr std::size_t READ_SIZE = 65536;

volatile std::sig_atomic_t signal_came = 0;
sigset_t mask_in_wait;

void note_signal(int) {
    signal_came = 1;
}

bool receiving(const Session& s) {
    return !s.options.receive.empty();
}

// ---- What is due -------------------------------------------------------------------------------------

void put_out(Session* s, uint8_t character) {
    const int line_byte = character == XOFF ? static_cast<int>(s->options.xoff_char) : character;
    s->out.push_back(static_cast<char>(line_byte));
    s->last_event = now_ns();
}

void send_answers(Session* s, int64_t now) {
    while (!s->answers_due.empty() && s->answers_due.front() <= now) {
        s->answers_due.pop_front();
        s->last_event = now;
        if (++s->answer_count == s->options.drop_ack) {
            log_note(s->log, "an answer is left out");
            continue;
        }
        s->answered_at = s->findings.line_bytes;
        put_out(s, ACK);
        s->findings.answers++;
    }
}

void let_go_on(Session* s, int64_t now) {
    if (s->xon_due == 0 || s->xon_due > now)
        return;
    s->xon_due = 0;
    s->since_xoff = 0;
    s->behind_this_xoff = 0;
    put_out(s, XON);
}

// With --send the start is the caller's; here it is only noted. Silence counts from it: the wait for it was
// none.
void start_if_due(Session* s, int64_t now) {
    if (s->start_due == 0 || s->start_due > now)
        return;
    s->started = true;
    s->last_event = now;
    s->start_due = 0;
    if (receiving(*s)) {
        put_out(s, XON);
        s->start_due = now + DC1_AGAIN;
    }
}

void do_what_is_due(Session* s) {
    const int64_t now = now_ns();
    send_answers(s, now);
    let_go_on(s, now);
    start_if_due(s, now);
}

// ---- Whether it is over ------------------------------------------------------------------------------

bool anything_moved(const Session& s) {
    return receiving(s) ? s.findings.line_bytes > 0 : s.started;
}

// The moment at which the run is over if nothing more happens, or INT64_MAX; `why` is the reason then.
int64_t over_at(const Session& s, End* why) {
    if (anything_moved(s) && s.closed_at != 0) {
        *why = End::CLOSED;
        return std::max(s.closed_at, s.last_in) + SETTLE;
    }
    if (anything_moved(s)) {
        const bool waits = s.held || s.full || s.xon_due != 0 || !s.answers_due.empty();
        *why = End::SILENCE;
        return waits ? INT64_MAX : s.last_event + s.options.idle * MS;
    }
    *why = End::NOTHING_CAME;
    return s.options.patience == 0 ? INT64_MAX : s.log.start_ns + s.options.patience * MS;
}

// What the line has not been asked for yet: bytes, or an opening. A poll of a pty hands up what is on its
// way.
bool something_waits(const Session& s) {
    pollfd polled[] = {{s.line.fd, POLLIN, 0}, {s.line.watch, POLLIN, 0}};
    return poll(polled, std::size(polled), 0) > 0;
}

// The time alone tells nothing: the computer, or a slow disk, may have kept this program from reading
// meanwhile.
void see_whether_over(Session* s) {
    End why = End::NOT_YET;
    if (signal_came != 0)
        s->end = End::STOPPED;
    else if (over_at(*s, &why) <= now_ns() && !something_waits(*s))
        s->end = why;
}

// ---- What comes in -----------------------------------------------------------------------------------

// A program may open the pty to try it and close it again: the start counts from its last opening.
void see_watch(Session* s) {
    const bool opened = read_watch(&s->line);
    if (opened) {
        log_note(s->log, "the other side was opened");
        s->closed_at = 0;
        const int64_t after = receiving(*s) ? s->options.dc1_after : s->options.start_after;
        const bool waits_for_key = s->options.start_key && !s->key_came;
        if (after != NOT_GIVEN && !waits_for_key && !anything_moved(*s))
            s->start_due = now_ns() + after * MS;
    }
    if (s->line.openings == 0 && s->closed_at == 0) {
        log_note(s->log, "the other side was closed");
        s->closed_at = now_ns();
        s->start_due = 0;
    }
}

void see_key(Session* s) {
    char key = 0;
    const ssize_t count = read(STDIN_FILENO, &key, 1);
    if (count < 0 && errno == EINTR)
        return;
    if (count <= 0) {
        s->key_open = false;
        return;
    }
    if (key != '\n' || s->key_came)
        return;
    log_note(s->log, "the start key was pressed");
    s->key_came = true;
    if (!s->options.device.empty() || s->line.openings > 0)
        s->start_due = now_ns();
}

// What has come already and was not read yet is no fault of the other side's.
void hold_other_side(Session* s) {
    int waiting = 0;
    s->ahead_of_xoff = ioctl(s->line.fd, FIONREAD, &waiting) == 0 ? waiting : 0;
    put_out(s, XOFF);
    s->findings.xoffs++;
    s->xon_due = now_ns() + std::max<int64_t>(s->options.xoff_for * MS, 1);
}

void count_xoff(Session* s, int64_t count) {
    const Options& o = s->options;
    if (s->xon_due != 0) {
        const int64_t ahead = std::min(count, s->ahead_of_xoff);
        s->ahead_of_xoff -= ahead;
        count -= ahead;
        s->findings.behind_xoff += count;
        s->behind_this_xoff += count;
        s->findings.most_behind_xoff = std::max(s->findings.most_behind_xoff, s->behind_this_xoff);
        if (o.overrun != NOT_GIVEN && s->behind_this_xoff > o.overrun &&
            s->behind_this_xoff - count <= o.overrun)
            add_fault(&s->findings, "more than " + std::to_string(o.overrun) + " bytes came behind an XOFF");
        return;
    }
    s->since_xoff += count;
    if (o.xoff_every != 0 && s->since_xoff >= o.xoff_every)
        hold_other_side(s);
}

// How much may be read so that XOFF and hanging up come behind exactly the byte that was asked for.
std::size_t read_limit(const Session& s) {
    auto limit = static_cast<int64_t>(READ_SIZE);
    if (s.options.xoff_every != 0 && s.xon_due == 0)
        limit = std::min(limit, s.options.xoff_every - s.since_xoff);
    if (receiving(s) && s.options.hang_up_after != NOT_GIVEN)
        limit = std::min(limit, s.options.hang_up_after - s.findings.line_bytes);
    return static_cast<std::size_t>(limit);
}

void see_line(Session* s) {
    static uint8_t buffer[READ_SIZE];
    const ssize_t count = read(s->line.fd, buffer, read_limit(*s));
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0) {
        s->end = End::LINE_FAILED;
        return;
    }
    log_bytes(s->log, "in", buffer, static_cast<std::size_t>(count));
    s->last_event = s->last_in = now_ns();
    s->bytes.insert(s->bytes.end(), buffer, buffer + count);
    if (!receiving(*s))
        return;
    s->start_due = 0;
    s->findings.line_bytes += count;
    count_xoff(s, count);
    if (s->findings.line_bytes == s->options.hang_up_after)
        hang_up(s);
}

// ---- The wait ----------------------------------------------------------------------------------------

int64_t next_time(const Session& s, int64_t until) {
    End why;
    int64_t time = over_at(s, &why);
    for (const int64_t due : {s.xon_due, s.start_due, until}) {
        if (due != 0)
            time = std::min(time, due);
    }
    if (!s.answers_due.empty())
        time = std::min(time, s.answers_due.front());
    return time;
}

void write_out(Session* s) {
    if (s->out.empty() || s->end != End::NOT_YET)
        return;
    const int64_t count = write_line(s, s->out.data(), s->out.size());
    if (count > 0)
        s->out.erase(0, static_cast<std::size_t>(count));
}

// Sleeps once, until something can be done, and does it.
void wait_once(Session* s, int64_t until, bool for_room) {
    const int64_t time = next_time(*s, until);
    const int64_t rest = std::max<int64_t>(time - now_ns(), 0);
    const timespec limit = {rest / 1000000000, rest % 1000000000};
    const bool wants_room = for_room || !s->out.empty();
    const bool wants_key = s->options.start_key && s->key_open && !s->key_came;
    pollfd polled[] = {
        {s->line.fd, static_cast<short>(POLLIN | (wants_room ? POLLOUT : 0)), 0},
        {s->line.watch, POLLIN, 0},
        {wants_key ? STDIN_FILENO : -1, POLLIN, 0},
    };
    const int found = ppoll(polled, std::size(polled), time == INT64_MAX ? nullptr : &limit, &mask_in_wait);
    if (found < 0 && errno != EINTR)
        s->end = End::LINE_FAILED;
    if (found <= 0)
        return;
    if (polled[1].revents != 0)
        see_watch(s);
    if (polled[2].revents != 0)
        see_key(s);
    if ((polled[0].revents & (POLLIN | POLLHUP | POLLERR | POLLNVAL)) != 0)
        see_line(s);
}

void obey_bytes(Session* s) {
    for (const uint8_t c : s->bytes) {
        if (s->options.handshake != Handshake::SOFTWARE)
            continue;
        if (c == s->options.xoff_char && !s->held) {
            s->held = true;
            s->findings.holds++;
        } else if (c == XON) {
            s->held = false;
        }
    }
    s->bytes.clear();
}

}  // namespace

void catch_signals() {
    struct sigaction action = {};
    action.sa_handler = note_signal;
    sigset_t caught;
    sigemptyset(&caught);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(number, &action, nullptr);
        sigaddset(&caught, number);
    }
    std::signal(SIGPIPE, SIG_IGN);
    sigprocmask(SIG_BLOCK, &caught, &mask_in_wait);
}

int peek_byte(Session* s, std::size_t ahead) {
    while (s->bytes.size() <= ahead) {
        if (s->end == End::NOT_YET) {
            do_what_is_due(s);
            write_out(s);
            see_whether_over(s);
        }
        if (s->end != End::NOT_YET)
            return -1;
        wait_once(s, 0, false);
    }
    return s->bytes[ahead];
}

int next_byte(Session* s) {
    const int byte = peek_byte(s, 0);
    if (byte >= 0) {
        s->bytes.pop_front();
        s->findings.taken++;
    }
    return byte;
}

void begin_session(Session* s) {
    s->last_event = now_ns();
    const int64_t after = receiving(*s) ? s->options.dc1_after : s->options.start_after;
    if (!s->options.device.empty() && after != NOT_GIVEN && !s->options.start_key)
        s->start_due = s->last_event + after * MS;
}

void hang_up(Session* s) {
    log_note(s->log, "hangs up");
    close_line(&s->line);
    s->findings.hung_up = true;
    s->end = End::HUNG_UP;
}

void answer_block(Session* s) {
    s->answers_due.push_back(now_ns() + s->options.ack_delay * MS);
    do_what_is_due(s);
    write_out(s);
}

void wait_to_send(Session* s, int64_t until) {
    const bool was_held = s->held;
    const bool had_started = s->started;
    while (true) {
        do_what_is_due(s);
        see_whether_over(s);
        if (s->end != End::NOT_YET || s->held != was_held || s->started != had_started)
            return;
        if (until != 0 && now_ns() >= until)
            return;
        wait_once(s, until, false);
        obey_bytes(s);
    }
}

int64_t write_line(Session* s, const char* bytes, std::size_t count) {
    const ssize_t written = write(s->line.fd, bytes, count);
    s->full = written < 0 && !receiving(*s);
    if (written < 0 && (errno == EAGAIN || errno == EINTR))
        return 0;
    if (written < 0) {
        s->end = End::LINE_FAILED;
        return -1;
    }
    log_bytes(s->log, "out", bytes, static_cast<std::size_t>(written));
    s->last_event = now_ns();
    return written;
}

void wait_until_writable(Session* s) {
    see_whether_over(s);
    if (s->end != End::NOT_YET)
        return;
    wait_once(s, 0, true);
    obey_bytes(s);
}

const char* end_text(End end) {
    switch (end) {
    case End::CLOSED:
        return "the other side has closed the line";
    case End::SILENCE:
        return "the line is silent";
    case End::NOTHING_CAME:
        return "nothing has come";
    case End::HUNG_UP:
        return "hung up";
    case End::STOPPED:
        return "stopped by a signal";
    case End::LINE_FAILED:
        return "the line has failed";
    default:
        return "";
    }
}

}  // namespace simulator
