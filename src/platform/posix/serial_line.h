// serial_line.h: the record of one open line, and the steps that its worker runs inside line_wait_event and
// line_delay. For the files serial*.cpp of this folder.
//
// The worker sleeps in one ppoll over the tty, a wake-up (new mask, new write), and, while the machine holds
// the line, the edges on which the driver says that it goes on. A time-out is set only while something of a
// write is under way. So an idle line and a held line cost nothing.
//
// How much may be in flight. A machine's XOFF stops our side at once, but not what has gone to an adapter's
// own buffer or to a reader at the far end of a pty. Therefore only a few milliseconds' worth of bytes are
// handed on ahead of the line: in flight is what the rate says, or what the driver says when that is more
// (TIOCOUTQ; a pty and the buffer of an adapter's chip always say 0). The environment variable
// HEXLANE_LINE_PACING=off, looked at when a line is opened, hands on all that the driver takes; it is meant
// for measuring throughput.
#pragma once

#include "platform/posix/serial_driver.h"
#include "platform/serial.h"

#include <cstdint>
#include <limits>
#include <mutex>

namespace hexlane::platform {

// Times are nanoseconds of the monotonic clock.
constexpr int64_t MICROSECOND = 1'000;
constexpr int64_t MILLISECOND = 1'000'000;
constexpr int64_t NEVER = std::numeric_limits<int64_t>::max();
int64_t now_ns();

constexpr int64_t IN_FLIGHT_TIME = 20 * MILLISECOND;  // of the line's rate
constexpr int IN_FLIGHT_MIN = 8;                      // bytes
constexpr int IN_FLIGHT_MAX = 1024;                   // bytes
constexpr int HELD_CHARACTERS = 10;  // character times without a byte moving: the line is held
constexpr int64_t CTS_PERIOD = 20 * MILLISECOND;

// Bytes taken from the driver at a time. Well under what a receive takes out of the ring at each EV_RXCHAR,
// so that the ring is empty again when the driver is.
constexpr int INTAKE = 1024;

// The write that runs, or the last one.
struct Sending {
    const uint8_t* data;  // the caller's; not touched any more once `running` is false
    int count;            // bytes of the write
    int handed;           // of these, accepted by the driver
    int queued;           // of these, still in the driver's queue when it was looked at last
    int left;             // handed less queued, the most seen so far
    bool running;         // EV_TXEMPTY is still to come
    bool refused;         // the driver has taken less than it was offered
    bool watch_edges;     // sleep until the driver moves
    int64_t busy_until;   // by its rate the line has sent everything that was handed on
    int64_t moved_at;     // a byte was last seen to move
    int64_t next_look;    // when to run send_step again
    int cts;              // as last seen in this write; -1 not yet
    int64_t cts_next;     // when to look again
};

// One line, from line_open to line_close.
struct Line {
    std::mutex lock;              // guards everything here; not held while the worker sleeps
    int tty = -1;                 // -1: not open
    int wake = -1;                // eventfd: something for the sleeping worker to see
    bool asleep = false;          // the worker is in its sleep; awake, it sees by itself what there is
    int edges = -1;               // epoll over the tty, edge triggered: room in the driver
    char device[PATH_SIZE] = "";  // its name, for messages
    LineDriver driver{};
    LineSettings settings{};
    bool has_modem_lines = true;  // until the driver says otherwise
    int64_t char_time = 0;        // of one character with its start, parity and stop bits
    bool paced = true;
    int in_flight_limit = IN_FLIGHT_MIN;  // bytes

    uint32_t mask = 0;
    uint32_t pending = 0;        // events that no wait has told yet
    bool gone = false;           // the device has vanished
    LineErrors errors_before{};  // counted by the driver when the line was opened

    uint8_t ring[RECEIVE_RING];
    int ring_first = 0;  // where the oldest byte lies
    int ring_used = 0;

    Sending sending{};
};

// The functions below need line.lock.

// Takes over the rate and form of line.settings for the pacing.
void set_line_speed(Line& line);

void start_write(Line& line, const uint8_t* data, int count);

// Drops the write and what is counted for it.
void stop_write(Line& line);

// Hands on what may be in flight now, notes EV_TXEMPTY and EV_CTS, and plans the next look. Consumes the
// edges.
void send_step(Line& line);

// Bytes of the write that the driver has taken and sent.
int bytes_that_left(Line& line);

// Looks whether bytes wait and none has moved for HELD_CHARACTERS.
bool line_is_held(Line& line);

void note_gone(Line& line);

// Sleeps until the tty, the wake-up, an awaited edge or `until`, with the lock let go, then takes in what has
// come.
void sleep_on_line(Line& line, std::unique_lock<std::mutex>& guard, int64_t until);

}  // namespace hexlane::platform
