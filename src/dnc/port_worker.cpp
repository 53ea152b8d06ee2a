// port_worker.cpp: one thread for each open slot: it sleeps until the line has an event and turns it into a
// step.
//
// The next block goes out once, whichever comes first, the machine's answer or the end of the block's write:
// the answer alone writes only when no write is running, otherwise the transmitter-empty does.

#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

namespace {

int eob_delay(int slot) {
    const LockGuard guard(port_slot[slot].step_lock);
    return machine_setting(machine_of_slot(slot), Field::EOB_DELAY_MS);
}

// Holds the worker, not the line, and never the lock.
void run_eob_delay(int slot) {
    const int delay = eob_delay(slot);
    if (delay != 0)
        line_delay(port_slot[slot].port_handle, delay);
}

bool may_send(int slot) {
    const TransferState& t = transfer_state[slot];
    return t.status == SENDING && (!t.wait_for_ack || t.carry_count > 0) && !port_slot[slot].write_running;
}

// The delay that is owed ahead of the first write, the step, and the delay behind it.
void send_next(int slot) {
    TransferState& t = transfer_state[slot];
    if (t.first_block.exchange(0) != 0)
        run_eob_delay(slot);
    transfer_step(slot, STEP_SEND);
    run_eob_delay(slot);
}

// For the block worker: the screen gives the next row.
void ask_for_row(int slot) {
    TransferState& t = transfer_state[slot];
    if (t.first_block.exchange(0) != 0)
        run_eob_delay(slot);
    row_sent = 1;
    send_message(start_point_window, NEXT_ROW_MESSAGE, slot, 0);
}

// Ends a wait for the machine's answer. Gives true when the worker should send now.
bool end_wait_for_ack(int slot, bool answered) {
    TransferState& t = transfer_state[slot];
    const LockGuard guard(port_slot[slot].step_lock);
    if (!t.wait_for_ack)
        return false;
    t.wait_for_ack = 0;
    if (answered)
        t.tally.acks++;
    return may_send(slot);
}

// Received bytes. Gives true when the machine has asked for the send that stands by.
bool take_received(int slot) {
    TransferState& t = transfer_state[slot];
    const LockGuard guard(port_slot[slot].step_lock);
    if (t.status == RECEIVE_STANDBY)
        t.status = RECEIVING;
    if (t.status == RECEIVING)
        t.last_activity_tick = tick_ms();
    transfer_step_locked(slot, STEP_RECEIVE);
    if (t.status != XON_SEEN)
        return false;
    set_sending_handshake(slot);
    t.first_block = 1;
    t.status = SENDING;
    return true;
}

// The end of a write. Gives true when the worker should send on.
bool note_written(int slot) {
    PortSlot& port = port_slot[slot];
    TransferState& t = transfer_state[slot];
    const LockGuard guard(port.step_lock);
    if (!port.write_running)
        return false;
    port.write_running = 0;
    t.bytes_done += port.write_count;
    t.out_index += port.write_count;
    t.tally.line_bytes += port.write_count;
    return may_send(slot);
}

void line_has_gone(int slot) {
    TransferState& t = transfer_state[slot];
    const LockGuard guard(port_slot[slot].step_lock);
    if (t.status == SEND_DONE || t.status == RECEIVE_DONE)
        return;  // a transfer that is complete stays so, whoever hangs up behind it
    t.fault = TransferFault::LINE_GONE;
    t.status = PORT_IDLE;
    post_message(child[0].main_window, TRANSFER_FAILED_MESSAGE, slot, t.transfer_number);
}

// What a set of events leads to: whether to send, and whether what is prepared goes out for the first time.
bool handle_events(int slot, uint32_t events) {
    bool send = false;
    if ((events & EV_CTS) != 0)
        send |= end_wait_for_ack(slot, false);
    if ((events & EV_RXFLAG) != 0 && transfer_state[slot].status == SENDING)
        send |= end_wait_for_ack(slot, true);
    if ((events & EV_RXCHAR) != 0)
        send |= take_received(slot);
    if ((events & EV_TXEMPTY) != 0)
        send |= note_written(slot);
    return send;
}

}  // namespace

int64_t port_worker(int64_t argument) {
    const int slot = static_cast<int>(argument);
    PortSlot& port = port_slot[slot];
    while (port.connected) {
        uint32_t events = 0;
        if (!line_wait_event(port.port_handle, &events) || (events & EV_GONE) != 0) {
            if (port.connected)
                line_has_gone(slot);
            return 1;
        }
        if (!port.connected || !handle_events(slot, events))
            continue;
        if (port.for_blocks && block_mode)
            ask_for_row(slot);
        else
            send_next(slot);
    }
    return 1;
}

}  // namespace hexlane
