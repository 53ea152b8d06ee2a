// line_model.h: the scripted serial lines: what the program has open, the machine's end, and the bytes
// between them. Nothing moves but on the scripted clock. Only serial.cpp, the clock and line_hooks.cpp
// include it. Any thread that has the turn.
//
// Out: a write goes into the driver's FIFO as room comes up, and leaves it a character time a byte. A machine
// that stops the line (XOFF under software handshake, CTS under hardware handshake) stops what goes into the
// FIFO; what is in it still leaves, as with a real UART. EV_TXEMPTY comes `drain_ns` behind the last byte of
// a write. In: bytes come a character time apart, into a ring of RECEIVE_RING bytes. A full ring stops the
// machine by the handshake; without one it drops bytes and counts them. Bytes for a port that is not open are
// lost.
#pragma once

#include "platform/scripted/script_clock.h"
#include "platform/serial.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace hexlane::platform {

constexpr int DEFAULT_FIFO = 16;  // bytes

struct IncomingByte {
    uint8_t byte;
    int64_t at_ns;
};

struct OutgoingByte {
    uint8_t byte;
    int64_t at_ns;     // when it had left
    bool after_pause;  // the line was idle before it
};

// The write that runs, or the last one.
struct LineWrite {
    const uint8_t* data = nullptr;  // the caller's; not touched any more once `running` is false
    int count = 0;
    int handed = 0;  // of these, in the FIFO or gone
    bool running = false;
    int64_t moved_ns = 0;  // when a byte last left
};

// From line_open to line_close.
struct OpenLine {
    bool open = false;
    int creation = 0;  // place among what falls due at one time
    std::string device;
    LineSettings settings = {};
    bool dtr = false;
    bool lost = false;  // the device has gone since it was opened
    uint32_t mask = 0;
    uint32_t pending = 0;  // events that no wait has told yet
    std::deque<uint8_t> ring;
    uint32_t overruns = 0;  // bytes that were lost on the way in
    LineWrite write;
    std::deque<uint8_t> fifo;   // the front one is on its way out
    bool stopped = false;       // by XOFF
    int64_t leaves_ns = NEVER;  // when the front byte has left
    int64_t empty_ns = NEVER;   // when EV_TXEMPTY is due
    int64_t delay_ns = NEVER;   // until when the worker is held
};

// The machine's end and the cable; stays as it is while the program opens and closes the port.
struct MachineEnd {
    std::string refusal_text;  // why an open fails; empty: it doesn't
    bool refuses_settings = false;
    bool gone = false;  // unplugged or hung up: opens fail
    bool cts = true;
    uint32_t real_rate = 0;  // that the driver sets whatever was asked; 0: what was asked
    int fifo_size = DEFAULT_FIFO;
    int64_t drain_ns = 0;
    std::deque<IncomingByte> incoming;  // in order of time
    int64_t incoming_until_ns = 0;      // when the last byte that was fed at the line's rate has come
    int lose_next = 0;                  // of those that come: so many are lost
    std::vector<OutgoingByte> outgoing;
    std::function<void(uint8_t byte)> hears;  // called for each byte that has left
};

struct ScriptedLine {
    OpenLine side;
    MachineEnd machine;
};

// COM `port`, 1 to PORT_COUNT.
ScriptedLine& scripted_line(int port);

// Time of a character by the line's settings; of 9600, 8, N, 1 before they are made.
int64_t character_ns(const OpenLine& side);

// Whether the machine or its cable stops a write.
bool line_is_stopped(const ScriptedLine& line);

// Whether the full ring stops the machine.
bool machine_is_held(const ScriptedLine& line);

// Around a change of the program's side: lets a machine that was held send on, at the line's rate, if the
// change has made room for that.
struct MachineHold {
    explicit MachineHold(ScriptedLine* changed) : line(changed), held(machine_is_held(*changed)) {}
    ~MachineHold();
    MachineHold(const MachineHold&) = delete;
    MachineHold& operator=(const MachineHold&) = delete;
    ScriptedLine* line;
    bool held;
};

// Hands on what fits, starts the next byte, and plans EV_TXEMPTY when all has left. After every change.
void push_write(ScriptedLine* line);

// Drops the write and what waits in the FIFO.
void stop_write(OpenLine* side);

// Notes events for the worker and wakes it.
void note_line_events(OpenLine* side, uint32_t events);

// The device has vanished or hung up.
void unplug_line(ScriptedLine* line);

// What falls due first on any line; NEVER when nothing does.
Due next_line_due();

// Runs what next_line_due has told.
void run_line_event(const Due& due);

// All lines hung up, so that their workers end, and then as new.
void hang_up_lines();
void wipe_lines();

}  // namespace hexlane::platform
