// session.h: one conversation on the line: waits for bytes, answers, holds the other side with XOFF, and
// knows when the run is over. Everything that happens by time happens inside the waits.
#pragma once

#include "line.h"
#include "log.h"
#include "options.h"
#include "report.h"

#include <cstdint>
#include <deque>
#include <string>

namespace simulator {

enum class End : uint8_t { NOT_YET, CLOSED, SILENCE, NOTHING_CAME, HUNG_UP, STOPPED, LINE_FAILED };

struct Session {
    Session(const Options& asked, Line& open_line, Log& open_log)
        : options(asked), line(open_line), log(open_log) {}

    const Options& options;
    Line& line;
    Log& log;
    Findings findings;
    End end = End::NOT_YET;

    std::deque<uint8_t> bytes;  // came in and not taken yet
    std::string out;            // control characters that wait to be written
    std::deque<int64_t> answers_due;
    int64_t answer_count = 0;  // those left out too
    int64_t answered_at = 0;   // line bytes that had come when the last answer went out

    // Times in ns of now_ns; 0 when not set.
    int64_t xon_due = 0;
    int64_t start_due = 0;   // DC1 or the first byte of --send
    int64_t closed_at = 0;   // the other side was closed, and not opened again
    int64_t last_event = 0;  // something moved
    int64_t last_in = 0;     // bytes came in
    int64_t since_xoff = 0;  // bytes since the last XON
    int64_t behind_this_xoff = 0;
    int64_t ahead_of_xoff = 0;  // of the bytes to come, those that were there before it
    bool started = false;       // DC1 was sent, or --send has begun
    bool held = false;          // the other side has sent XOFF (--send)
    bool full = false;          // the line has taken nothing: the other side holds it without a word (--send)
    bool key_open = true;       // standard input may still bring the start key
    bool key_came = false;      // it was pressed
};

// Makes the process ready for ppoll: SIGINT, SIGTERM and SIGHUP end the run in order.
void catch_signals();

// On a device the start counts from here; on a pty from its opening by the other side, for which it waits
// with the start key pressed too.
void begin_session(Session* session);

// Closes the line as an unplugged cable does; the run is over.
void hang_up(Session* session);

// The next byte from the line; -1 when the run is over. peek_byte leaves it and all ahead of it in place.
int next_byte(Session* session);
int peek_byte(Session* session, std::size_t ahead);

// Answers a block with ACK after the delay that was asked for.
void answer_block(Session* session);

// Waits until `until` (ns; 0: no limit) has passed, the state of start or hold has changed, or the run is
// over. Bytes that come are obeyed as XON and XOFF and dropped: for --send.
void wait_to_send(Session* session, int64_t until);

// Writes as much as the line takes now; gives the count, or -1 when the line has failed.
int64_t write_line(Session* session, const char* bytes, std::size_t count);

// The line can take no more: waits until it can, or as wait_to_send.
void wait_until_writable(Session* session);

// A sentence for a run that is over too early.
const char* end_text(End end);

}  // namespace simulator
