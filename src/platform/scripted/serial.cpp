// serial.cpp: the operations of serial.h on the scripted lines. This file holds the interface and nothing
// else, so that it stands in the place of the one over real devices.

#include "platform/serial.h"

#include "platform/posix/serial_problem.h"
#include "platform/scripted/line_model.h"
#include "platform/scripted/record.h"
#include "platform/scripted/workers.h"

#include <algorithm>
#include <cerrno>

namespace hexlane::platform {

namespace {

constexpr int HELD_CHARACTERS = 10;  // character times without a byte moving: the line is held

// The line of a handle, nullptr when it is not open.
ScriptedLine* line_of(LineHandle handle) {
    if (handle < 0 || handle >= PORT_COUNT || !scripted_line(handle + 1).side.open) {
        return nullptr;
    }
    return &scripted_line(handle + 1);
}

bool device_is_open(const std::string& device) {
    for (int port = 1; port <= PORT_COUNT; port++) {
        const OpenLine& side = scripted_line(port).side;
        if (side.open && side.device == device) {
            return true;
        }
    }
    return false;
}

// 1 when nothing speaks against an open of `device`.
int may_open(const MachineEnd& machine, const std::string& device) {
    if (!machine.refusal_text.empty()) {
        return note_line_problem(machine.refusal_text.c_str());
    }
    if (machine.gone) {
        return note_device_error(device.c_str(), ENOENT);
    }
    if (device_is_open(device)) {
        return note_line_problem((device + " is in use by this program already.").c_str());
    }
    return 1;
}

void must_be_worker(const char* call) {
    if (!on_worker()) {
        stop_run(std::string(call) + ": the main thread would wait for ever");
    }
}

}  // namespace

LineHandle line_open(int port) {
    clear_line_problem();
    char device[PATH_SIZE];
    if (!line_device(port, device, sizeof device)) {
        return NO_LINE;
    }
    ScriptedLine& line = scripted_line(port);
    if (!may_open(line.machine, device)) {
        return NO_LINE;
    }
    line.side = OpenLine();
    line.side.open = true;
    line.side.creation = next_creation_number();
    line.side.device = device;
    return port - 1;
}

// Without the handshake, or with its XON/XOFF left to the program, nothing stops the driver any more.
int line_configure(LineHandle handle, const LineSettings& settings) {
    clear_line_problem();
    ScriptedLine* line = line_of(handle);
    if (line == nullptr) {
        return note_line_problem("The serial line is not open.");
    }
    if (line->machine.refuses_settings) {
        return note_line_problem((line->side.device + " does not take these settings.").c_str());
    }
    const MachineHold hold(line);
    line->side.settings = settings;
    if (line->machine.real_rate != 0) {
        line->side.settings.baud_rate = line->machine.real_rate;
    }
    if (!settings.software_handshake || settings.xon_char == 0) {
        line->side.stopped = false;
    }
    push_write(line);
    return 1;
}

int line_settings(LineHandle handle, LineSettings* settings) {
    const ScriptedLine* line = line_of(handle);
    if (line == nullptr) {
        return 0;
    }
    *settings = line->side.settings;
    return 1;
}

void line_set_mask(LineHandle handle, uint32_t mask) {
    if (ScriptedLine* line = line_of(handle)) {
        line->side.mask = mask;
        note_line_events(&line->side, 0);
    }
}

int line_wait_event(LineHandle handle, uint32_t* events) {
    must_be_worker("line_wait_event");
    *events = 0;
    ScriptedLine* line = line_of(handle);
    if (line == nullptr) {
        return 0;
    }
    OpenLine& side = line->side;
    while (side.mask != 0) {
        *events = side.pending & (side.mask | EV_GONE);
        if (*events != 0) {
            side.pending &= ~*events;
            return 1;
        }
        if (side.lost) {
            return 0;
        }
        worker_waits_for(&side);
    }
    return 1;
}

int line_delay(LineHandle handle, int ms) {
    must_be_worker("line_delay");
    ScriptedLine* line = line_of(handle);
    if (line == nullptr) {
        return 0;
    }
    OpenLine& side = line->side;
    const int64_t until = clock_ns() + ms * NS_PER_MS;
    while (clock_ns() < until && side.mask != 0 && !side.lost) {
        side.delay_ns = until;
        worker_waits_for(&side);
    }
    side.delay_ns = NEVER;
    return side.mask != 0 && !side.lost ? 1 : 0;
}

int line_queue_length(LineHandle handle) {
    const ScriptedLine* line = line_of(handle);
    return line != nullptr ? static_cast<int>(line->side.ring.size()) : 0;
}

int line_read(LineHandle handle, void* buffer, int size) {
    ScriptedLine* line = line_of(handle);
    if (line == nullptr) {
        return 0;
    }
    const MachineHold hold(line);
    std::deque<uint8_t>& ring = line->side.ring;
    const int count = std::clamp(size, 0, static_cast<int>(ring.size()));
    std::copy_n(ring.begin(), count, static_cast<uint8_t*>(buffer));
    ring.erase(ring.begin(), ring.begin() + count);
    return count;
}

int line_write(LineHandle handle, const void* data, int count) {
    ScriptedLine* line = line_of(handle);
    if (line == nullptr || line->side.lost || line->side.write.running || count < 0) {
        return 0;
    }
    line->side.write = {static_cast<const uint8_t*>(data), count, 0, true, clock_ns()};
    push_write(line);
    return 1;
}

int line_written(LineHandle handle) {
    const ScriptedLine* line = line_of(handle);
    return line != nullptr ? line->side.write.handed - static_cast<int>(line->side.fifo.size()) : 0;
}

bool line_held(LineHandle handle) {
    const ScriptedLine* line = line_of(handle);
    if (line == nullptr || !line->side.write.running) {
        return false;
    }
    const LineWrite& write = line->side.write;
    const bool bytes_wait = write.handed < write.count || !line->side.fifo.empty();
    return bytes_wait && clock_ns() - write.moved_ns > HELD_CHARACTERS * character_ns(line->side);
}

int line_errors(LineHandle handle, LineErrors* errors) {
    const ScriptedLine* line = line_of(handle);
    if (line == nullptr) {
        return 0;
    }
    *errors = {0, 0, line->side.overruns};
    return 1;
}

void line_set_dtr(LineHandle handle, bool on) {
    if (ScriptedLine* line = line_of(handle)) {
        line->side.dtr = on;
    }
}

void line_purge(LineHandle handle) {
    if (ScriptedLine* line = line_of(handle)) {
        const MachineHold hold(line);
        stop_write(&line->side);
        line->side.ring.clear();
        line->side.pending &= EV_GONE;
    }
}

void line_close(LineHandle handle) {
    if (ScriptedLine* line = line_of(handle)) {
        const MachineHold hold(line);
        line->side = OpenLine();
    }
}

}  // namespace hexlane::platform
