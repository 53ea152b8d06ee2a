// line_hooks.h: the machine's end of the scripted serial lines, for unit tests. COM `port` is 1 to
// PORT_COUNT. What a test does here happens to a port that may be open or not; the program's side is
// platform/serial.h. All of it is on the scripted clock: bytes are on their way until the clock is moved
// (here, or advance_clock of test_hooks.h). reset_desktop puts all lines back: plugged in, CTS on, a FIFO of
// 16 bytes, no drain time, the rate that the program asks for, nobody who listens. Main thread; functions
// given to play_machine may call everything but the waits.
#pragma once

#include "platform/serial.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace hexlane::platform {

// ---- What the machine sends --------------------------------------------------------------------------

// Bytes that come at the line's rate, behind those that are on their way already; the first one `after_us`
// from now and one character time.
void feed_line(int port, std::string_view bytes, int64_t after_us = 0);

// Bytes that come all in one moment, as from the buffer of an adapter, `after_us` from now.
void feed_line_at_once(int port, std::string_view bytes, int64_t after_us = 0);

// The next `count` bytes that come to an open port are lost on the way, as in an adapter that is overrun, and
// counted.
void lose_line_bytes(int port, int count);

// ---- What has come out -------------------------------------------------------------------------------

struct SentByte {
    uint8_t byte;
    int64_t at_us;     // when it had left, from the program's start
    bool after_pause;  // the line was idle before it
};

// All bytes since the last call of either.
std::string take_sent(int port);
std::vector<SentByte> take_sent_bytes(int port);

// `hears` is called for each byte as it has left, also under waits; nullptr for none. So a machine that
// answers, stops the line or hangs up can be played.
void play_machine(int port, std::function<void(uint8_t byte)> hears);

// ---- The line itself ---------------------------------------------------------------------------------

void set_line_cts(int port, bool on);

// The rate that the driver really sets, whatever the program asks for; 0: what it asks for. From the next
// line_configure on.
void set_line_rate(int port, uint32_t rate);

// Bytes that the driver holds, the one on its way out included, at least 1: so many still come behind an
// XOFF.
void set_line_fifo(int port, int bytes);

// How long behind the last byte EV_TXEMPTY comes.
void set_line_drain(int port, int64_t us);

// Opens fail from now on, with this text; empty: they succeed again.
void refuse_line(int port, const char* text);

// line_configure fails.
void refuse_line_settings(int port, bool refused);

// The adapter is pulled out, or the line hung up: EV_GONE, and opens fail; and back.
void unplug_line(int port);
void plug_line(int port);

struct LineFacts {
    bool open;
    bool dtr;
    LineSettings settings;  // zero before they are made
    bool writing;           // EV_TXEMPTY is still to come
    int unsent;             // bytes of the write that the driver has not taken yet
    int in_fifo;            // bytes in flight
    bool stopped;           // by the machine's XOFF or CTS
};
LineFacts line_facts(int port);

// ---- Time --------------------------------------------------------------------------------------------

// Moves the clock on by microseconds.
void advance_clock_us(int64_t us);

// Moves the clock on, one event after the other, until `done`; at most by `limit_ms`. Gives whether it came
// to that. Before each look workers wait and nothing is queued.
bool advance_until(const std::function<bool()>& done, int limit_ms);

// From the program's start.
int64_t clock_us();

}  // namespace hexlane::platform
