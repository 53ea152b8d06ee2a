// line_model.cpp: bytes on their way over the scripted serial lines.

#include "platform/scripted/line_model.h"

#include "platform/scripted/record.h"
#include "platform/scripted/workers.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

ScriptedLine lines[PORT_COUNT];

constexpr int64_t NS_PER_SECOND = 1'000'000'000;
constexpr uint32_t RATE_UNSET = 9600;

// ---- Out ---------------------------------------------------------------------------------------------

bool all_has_left(const OpenLine& side) {
    return side.write.running && side.write.handed == side.write.count && side.fifo.empty();
}

void byte_has_left(ScriptedLine* line) {
    OpenLine& side = line->side;
    const uint8_t byte = side.fifo.front();
    side.fifo.pop_front();
    side.leaves_ns = NEVER;
    side.write.moved_ns = clock_ns();
    std::vector<OutgoingByte>& outgoing = line->machine.outgoing;
    const int64_t started = clock_ns() - character_ns(side);
    outgoing.push_back({byte, clock_ns(), outgoing.empty() || outgoing.back().at_ns < started});
    push_write(line);
    const std::function<void(uint8_t byte)> hears = line->machine.hears;  // it may set another one
    if (hears) {
        hears(byte);
    }
}

void write_is_over(OpenLine* side) {
    side->empty_ns = NEVER;
    side->write.running = false;
    side->write.data = nullptr;
    note_line_events(side, EV_TXEMPTY);
}

// ---- In ----------------------------------------------------------------------------------------------

// The driver's own handshake takes its two characters. Gives whether the byte was one of them.
bool handshake_takes(ScriptedLine* line, uint8_t byte) {
    const LineSettings& settings = line->side.settings;
    const bool on = settings.software_handshake && settings.xon_char != 0;
    if (!on || (byte != settings.xon_char && byte != settings.xoff_char)) {
        return false;
    }
    line->side.stopped = byte == settings.xoff_char;
    push_write(line);
    return true;
}

void take_byte(ScriptedLine* line, const IncomingByte& incoming) {
    OpenLine& side = line->side;
    if (!side.open || side.lost || handshake_takes(line, incoming.byte)) {
        return;
    }
    if (side.ring.size() >= RECEIVE_RING || line->machine.lose_next > 0) {
        line->machine.lose_next = std::max(line->machine.lose_next - 1, 0);
        side.overruns++;
        return;
    }
    side.ring.push_back(incoming.byte);
    const bool is_event = incoming.byte == side.settings.event_char;
    note_line_events(&side, EV_RXCHAR | (is_event ? EV_RXFLAG : 0));
}

// What comes in one moment is one piece to the worker.
void bytes_have_come(ScriptedLine* line) {
    std::deque<IncomingByte>& incoming = line->machine.incoming;
    const int64_t time_ns = incoming.front().at_ns;
    while (!incoming.empty() && incoming.front().at_ns == time_ns && !machine_is_held(*line)) {
        const IncomingByte byte = incoming.front();
        incoming.pop_front();
        take_byte(line, byte);
    }
}

// ---- What is due -------------------------------------------------------------------------------------

struct LineEvent {
    int64_t time_ns;
    void (*run)(ScriptedLine* line);
};

// The next event of a line; of those at one time a byte that comes is first, so that an answer of the machine
// is there before the next byte leaves.
LineEvent next_event(const ScriptedLine& line) {
    const std::deque<IncomingByte>& incoming = line.machine.incoming;
    const bool nothing_comes = incoming.empty() || machine_is_held(line);
    const LineEvent events[] = {
        {nothing_comes ? NEVER : incoming.front().at_ns, bytes_have_come},
        {line.side.leaves_ns, byte_has_left},
        {line.side.empty_ns, [](ScriptedLine* due) { write_is_over(&due->side); }},
        {line.side.delay_ns,
         [](ScriptedLine* due) {
             due->side.delay_ns = NEVER;
             wake_workers(&due->side);
         }},
    };
    return *std::min_element(
        std::begin(events), std::end(events),
        [](const LineEvent& left, const LineEvent& right) { return left.time_ns < right.time_ns; });
}

}  // namespace

ScriptedLine& scripted_line(int port) {
    if (port < 1 || port > PORT_COUNT) {
        stop_run("there is no line " + std::to_string(port));
    }
    return lines[port - 1];
}

int64_t character_ns(const OpenLine& side) {
    const LineSettings& settings = side.settings;
    if (settings.baud_rate == 0) {
        return 10 * NS_PER_SECOND / RATE_UNSET;
    }
    const int bits = 1 + settings.byte_size + (settings.parity == PARITY_NONE ? 0 : 1) +
                     (settings.stop_bits == STOP_BITS_ONE ? 1 : 2);
    return bits * NS_PER_SECOND / settings.baud_rate;
}

bool line_is_stopped(const ScriptedLine& line) {
    return line.side.stopped || (line.side.settings.hardware_handshake && !line.machine.cts);
}

bool machine_is_held(const ScriptedLine& line) {
    const LineSettings& settings = line.side.settings;
    const bool handshake =
        settings.hardware_handshake || (settings.software_handshake && settings.xon_char != 0);
    return line.side.open && handshake && line.side.ring.size() >= RECEIVE_RING;
}

MachineHold::~MachineHold() {
    if (!held || machine_is_held(*line)) {
        return;
    }
    int64_t next_ns = clock_ns();
    for (IncomingByte& byte : line->machine.incoming) {
        next_ns += character_ns(line->side);
        if (byte.at_ns >= next_ns) {
            return;
        }
        byte.at_ns = next_ns;
    }
    line->machine.incoming_until_ns = std::max(line->machine.incoming_until_ns, next_ns);
}

void push_write(ScriptedLine* line) {
    OpenLine& side = line->side;
    LineWrite& write = side.write;
    const auto size = static_cast<std::size_t>(line->machine.fifo_size);
    while (write.running && write.handed < write.count && side.fifo.size() < size &&
           !line_is_stopped(*line)) {
        side.fifo.push_back(write.data[write.handed++]);
    }
    if (!side.fifo.empty() && side.leaves_ns == NEVER) {
        side.leaves_ns = clock_ns() + character_ns(side);
    }
    if (all_has_left(side) && side.empty_ns == NEVER) {
        side.empty_ns = clock_ns() + line->machine.drain_ns;
    }
}

void stop_write(OpenLine* side) {
    side->write.running = false;
    side->write.data = nullptr;
    side->fifo.clear();
    side->leaves_ns = NEVER;
    side->empty_ns = NEVER;
}

void note_line_events(OpenLine* side, uint32_t events) {
    side->pending |= events;
    wake_workers(side);
}

void unplug_line(ScriptedLine* line) {
    line->machine.gone = true;
    line->machine.incoming.clear();
    if (line->side.open && !line->side.lost) {
        line->side.lost = true;
        stop_write(&line->side);
        line->side.delay_ns = NEVER;
        note_line_events(&line->side, EV_GONE);
    }
}

Due next_line_due() {
    Due next;
    for (const ScriptedLine& line : lines) {
        const Due due = {next_event(line).time_ns, line.side.creation};
        if (is_before(due, next)) {
            next = due;
        }
    }
    return next;
}

void run_line_event(const Due& due) {
    for (ScriptedLine& line : lines) {
        const LineEvent event = next_event(line);
        if (event.time_ns == due.time_ns && line.side.creation == due.creation) {
            event.run(&line);
            return;
        }
    }
}

void hang_up_lines() {
    for (ScriptedLine& line : lines) {
        unplug_line(&line);
    }
}

void wipe_lines() {
    for (ScriptedLine& line : lines) {
        line = ScriptedLine();
    }
}

}  // namespace hexlane::platform
