// line_hooks.cpp: a test plays the machine.

#include "platform/scripted/line_hooks.h"

#include "platform/scripted/line_model.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/record.h"

#include <algorithm>
#include <utility>

namespace hexlane::platform {

namespace {

// Keeps the bytes in order of time; of those of one time the one that was fed first comes first.
void add_incoming(MachineEnd* machine, const IncomingByte& byte) {
    const auto behind = std::upper_bound(
        machine->incoming.begin(), machine->incoming.end(), byte,
        [](const IncomingByte& left, const IncomingByte& right) { return left.at_ns < right.at_ns; });
    machine->incoming.insert(behind, byte);
}

void feed_one(ScriptedLine* line, uint8_t byte, int64_t not_before_ns) {
    MachineEnd& machine = line->machine;
    const int64_t starts = std::max(machine.incoming_until_ns, not_before_ns);
    machine.incoming_until_ns = starts + character_ns(line->side);
    add_incoming(&machine, {byte, machine.incoming_until_ns});
}

}  // namespace

// ---- What the machine sends --------------------------------------------------------------------------

void feed_line(int port, std::string_view bytes, int64_t after_us) {
    ScriptedLine& line = scripted_line(port);
    for (const char byte : bytes) {
        feed_one(&line, static_cast<uint8_t>(byte), clock_ns() + after_us * NS_PER_US);
    }
}

void feed_line_at_once(int port, std::string_view bytes, int64_t after_us) {
    for (const char byte : bytes) {
        add_incoming(&scripted_line(port).machine,
                     {static_cast<uint8_t>(byte), clock_ns() + after_us * NS_PER_US});
    }
}

void lose_line_bytes(int port, int count) {
    scripted_line(port).machine.lose_next = count;
}

// ---- What has come out -------------------------------------------------------------------------------

std::string take_sent(int port) {
    std::string bytes;
    for (const OutgoingByte& sent : std::exchange(scripted_line(port).machine.outgoing, {})) {
        bytes += static_cast<char>(sent.byte);
    }
    return bytes;
}

std::vector<SentByte> take_sent_bytes(int port) {
    std::vector<SentByte> bytes;
    for (const OutgoingByte& sent : std::exchange(scripted_line(port).machine.outgoing, {})) {
        bytes.push_back({sent.byte, sent.at_ns / NS_PER_US, sent.after_pause});
    }
    return bytes;
}

void play_machine(int port, std::function<void(uint8_t byte)> hears) {
    scripted_line(port).machine.hears = std::move(hears);
}

// ---- The line itself ---------------------------------------------------------------------------------

// The program hears of a change only while it matters to it.
void set_line_cts(int port, bool on) {
    ScriptedLine& line = scripted_line(port);
    if (line.machine.cts == on) {
        return;
    }
    line.machine.cts = on;
    if (line.side.settings.hardware_handshake && line.side.write.running) {
        note_line_events(&line.side, EV_CTS);
    }
    push_write(&line);
}

void set_line_rate(int port, uint32_t rate) {
    scripted_line(port).machine.real_rate = rate;
}

void set_line_fifo(int port, int bytes) {
    scripted_line(port).machine.fifo_size = std::max(bytes, 1);
}

void set_line_drain(int port, int64_t us) {
    scripted_line(port).machine.drain_ns = us * NS_PER_US;
}

void refuse_line(int port, const char* text) {
    scripted_line(port).machine.refusal_text = text;
}

void refuse_line_settings(int port, bool refused) {
    scripted_line(port).machine.refuses_settings = refused;
}

void unplug_line(int port) {
    unplug_line(&scripted_line(port));
}

void plug_line(int port) {
    scripted_line(port).machine.gone = false;
}

LineFacts line_facts(int port) {
    const ScriptedLine& line = scripted_line(port);
    const LineWrite& write = line.side.write;
    return {line.side.open,
            line.side.dtr,
            line.side.settings,
            write.running,
            write.running ? write.count - write.handed : 0,
            static_cast<int>(line.side.fifo.size()),
            line_is_stopped(line)};
}

// ---- Time --------------------------------------------------------------------------------------------

void advance_clock_us(int64_t us) {
    int64_t elapsed = 0;
    move_clock(us * NS_PER_US, &elapsed, [] { return false; });
}

bool advance_until(const std::function<bool()>& done, int limit_ms) {
    serve_messages();
    int64_t elapsed = 0;
    if (!done()) {
        move_clock(limit_ms * NS_PER_MS, &elapsed, done);
    }
    return done();
}

int64_t clock_us() {
    return clock_ns() / NS_PER_US;
}

}  // namespace hexlane::platform
