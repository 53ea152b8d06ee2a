#include "dnc/port_engine.h"

#include "dnc/machine_fields.h"
#include "dnc/transfer.h"
#include "dnc/transfer_log.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>

namespace hexlane {

using namespace platform;

PortSlot port_slot[SLOT_COUNT];
std::atomic<int32_t> block_mode = 0;
std::atomic<int32_t> row_sent = 0;
WindowHandle start_point_window = NO_WINDOW;

namespace {

constexpr uint8_t PARITY_BY_INDEX[] = {PARITY_NONE, PARITY_EVEN, PARITY_ODD};

// While a queued send stands by, the driver must let the machine's DC1 through.
uint8_t xon_for(const TransferState& t) {
    return t.status == SEND_STANDBY && !t.start_now ? 0x00 : XON_CHAR;
}

int start_worker(int slot, bool for_blocks) {
    PortSlot& port = port_slot[slot];
    port.for_blocks = for_blocks;
    port.worker_thread =
        thread_start(port_worker, slot, for_blocks ? ThreadPriority::BELOW_NORMAL : ThreadPriority::HIGHEST);
    return port.worker_thread != NO_THREAD;
}

int open_with_worker(int slot, bool for_blocks) {
    PortSlot& port = port_slot[slot];
    const LineHandle line = line_open(port.port_number);
    if (line == NO_LINE) {
        log_failed_open(slot);
        return 0;
    }
    port.port_handle = line;
    port.last_in_queue = 0;
    port.write_running = 0;
    port.write_count = 0;
    line_set_mask(line, PORT_EVENT_MASK);
    hold_machine(slot);
    if (!port_configure(slot)) {
        log_failed_open(slot);
        let_go_machine(slot);
        line_close(line);
        return 0;
    }
    port.connected = 1;
    transfer_state[slot].fault = TransferFault::NONE;
    transfer_step(slot, STEP_NONE);
    if (!start_worker(slot, for_blocks)) {
        port.connected = 0;
        let_go_machine(slot);
        line_close(line);
        return -1;
    }
    line_set_dtr(line, true);
    return 1;
}

}  // namespace

int port_init(int slot, const MachineParams& machine) {
    PortSlot& port = port_slot[slot];
    if (port.step_lock == NO_LOCK)
        port.step_lock = lock_make();
    if (port.step_lock == NO_LOCK)
        return -1;
    port_apply_machine(slot, machine);
    return 1;
}

void port_apply_machine(int slot, const MachineParams& machine) {
    PortSlot& port = port_slot[slot];
    TransferState& t = transfer_state[slot];
    port.baud_rate = BAUD_RATES[machine_setting(machine, Field::BAUD_INDEX)];
    port.byte_size = static_cast<uint8_t>(machine_setting(machine, Field::DATA_BITS_INDEX) + 7);
    port.parity = PARITY_BY_INDEX[machine_setting(machine, Field::PARITY_INDEX)];
    port.stop_bits = machine_setting(machine, Field::STOP_BITS_INDEX) == 0 ? STOP_BITS_ONE : STOP_BITS_TWO;
    port.port_number = static_cast<uint8_t>(machine_setting(machine, Field::PORT_INDEX) + 1);
    port.flow_control =
        machine_setting(machine, Field::HANDSHAKE) == HANDSHAKE_SOFTWARE ? FLOW_XON_XOFF : FLOW_RTS_CTS;
    t.xoff_char = machine.xoff_char == XOFF_EIA_ALTERNATE ? XOFF_EIA_ALTERNATE : XOFF_DEFAULT;
    const EobConversion& eob = EOB_CONVERSIONS[machine_setting(machine, Field::EOB_CONVERSION)];
    t.eob_on = eob.on;
    t.eob_length = eob.length;
    std::copy(std::begin(eob.bytes), std::end(eob.bytes), t.eob_bytes);
}

int port_configure(int slot) {
    PortSlot& port = port_slot[slot];
    port_apply_machine(slot, machine_of_slot(slot));
    LineSettings settings = {};
    settings.baud_rate = port.baud_rate;
    settings.byte_size = port.byte_size;
    settings.parity = port.parity;
    settings.stop_bits = port.stop_bits;
    settings.hardware_handshake = port.flow_control == FLOW_RTS_CTS;
    settings.software_handshake = port.flow_control == FLOW_XON_XOFF;
    settings.xon_char = xon_for(transfer_state[slot]);
    settings.xoff_char = transfer_state[slot].xoff_char;
    settings.event_char = ACK_CHAR;
    return line_configure(port.port_handle, settings);
}

int port_open(int slot) {
    return open_with_worker(slot, false);
}

int port_open_for_blocks(int slot) {
    return open_with_worker(slot, true);
}

void port_close(int slot) {
    if (!port_slot[slot].connected)
        return;
    port_disconnect(slot);
    port_release(slot);
}

// A received file is closed ahead of the line's end, whose counters tell whether bytes were lost.
void port_disconnect(int slot) {
    port_slot[slot].connected = 0;
    line_set_mask(port_slot[slot].port_handle, 0);
    {
        const LockGuard guard(port_slot[slot].step_lock);
        close_received_file(slot);
    }
    end_log_entry(slot);
}

void port_release(int slot) {
    PortSlot& port = port_slot[slot];
    thread_join(port.worker_thread);
    port.worker_thread = NO_THREAD;
    line_set_dtr(port.port_handle, false);
    line_purge(port.port_handle);
    line_close(port.port_handle);
    let_go_machine(slot);
    port.port_handle = NO_LINE;
    port.write_running = 0;
}

int port_read(uint8_t* buffer, int size, int slot) {
    PortSlot& port = port_slot[slot];
    const int queued = line_queue_length(port.port_handle);
    int count = std::min(size, queued);
    if (queued < size / 3) {
        count = queued == port.last_in_queue ? queued : 0;
        port.last_in_queue = queued;
    }
    if (count == 0)
        return 0;
    port.last_in_queue = 0;
    const int got = line_read(port.port_handle, buffer, count);
    transfer_state[slot].bytes_done += got;
    return got;
}

void port_write(const uint8_t* bytes, int count, int slot) {
    PortSlot& port = port_slot[slot];
    port.write_count = count;
    port.write_running = 1;
    if (!line_write(port.port_handle, bytes, count))
        port.write_running = 0;  // the line has failed: its worker learns it from the wait
}

int32_t bytes_of_running_write(int slot) {
    return port_slot[slot].write_running ? line_written(port_slot[slot].port_handle) : 0;
}

}  // namespace hexlane
