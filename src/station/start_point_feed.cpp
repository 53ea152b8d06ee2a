// start_point_feed.cpp: rows handed to the machine one by one, as fast as it takes them. The block worker
// asks for the next piece when one has left the line and, where the protocol wants it, has been answered.
// The worker waits in its message while the screen acts on it, so both never work on a row at once.

#include "dnc/filters.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "platform/desktop.h"
#include "station/activity.h"
#include "station/port_report.h"
#include "station/row_index.h"
#include "station/start_point_internal.h"
#include "station/station_texts.h"

namespace hexlane {

using namespace platform;

namespace {

// Starts reading the cursor's row.
void start_row() {
    TransferState& t = transfer_state[send_slot];
    const LockGuard guard(port_slot[send_slot].step_lock);
    const int64_t offset = row_offset(start_point.cursor_row);
    t.start_offset = static_cast<int32_t>(offset < 0 ? 0 : offset);
    t.file_position = t.start_offset;
    t.file_count = 0;
    t.in_index = 0;
    t.out_index = 0;
    t.out_count = 0;
    t.last_buffer = 0;
    t.fill_done = 0;
    start_point.row_started = true;
}

// Fills the output buffer with the next piece of the cursor's row. Gives false when the row has no more.
bool fill_piece() {
    TransferState& t = transfer_state[send_slot];
    const LockGuard guard(port_slot[send_slot].step_lock);
    const int64_t end = row_end(start_point.cursor_row);
    t.out_index = 0;
    t.out_count = 0;
    while (t.out_count == 0) {
        if (t.in_index >= t.file_count && t.carry_count == 0) {
            if (t.last_buffer || t.file_position >= end)
                return false;
            read_line(send_slot);
            if (t.file_count == 0)
                return false;
        }
        t.fill_done = static_cast<int16_t>(fill_from_line(send_slot));
    }
    t.first_block = 1;
    return true;
}

// Nothing is left to feed. With one mark alone that is so at once: a block has two ends.
bool is_over() {
    return start_point.block_marked &&
           (start_point.block_start_row < 0 || start_point.cursor_row > start_point.block_end_row);
}

bool is_last_row() {
    const int32_t row = start_point.cursor_row;
    return !start_point.block_marked || row >= start_point.block_end_row || row + 1 >= row_count();
}

// The row has gone, or the filters have dropped it whole. Gives false when the feed is over.
bool leave_row() {
    const bool last = is_last_row();
    start_point.row_started = false;
    const bool faulty = transfer_state[send_slot].fault != TransferFault::NONE;
    if (!faulty)
        move_cursor_down();
    if (!last && !faulty)
        return true;
    stop_feed();
    if (faulty)
        tell_transfer_end(send_slot);
    return false;
}

}  // namespace

void begin_feed() {
    {
        const LockGuard guard(port_slot[send_slot].step_lock);
        TransferState& t = transfer_state[send_slot];
        reset_transfer(send_slot);
        t.wait_for_ack = 0;
        if (t.fault != TransferFault::LINE_GONE)
            t.fault = TransferFault::NONE;
        t.status = SENDING;
        transfer_step_locked(send_slot, STEP_RECEIVE);  // drops what has come while nothing was sent
    }
    stamp_source(send_slot);
    if (start_point.block_marked && start_point.block_start_row >= 0)
        go_to_row(start_point.block_start_row);
    send_continuous = 0;
    send_now = 1;
    block_mode = 1;
    row_sent = 0;
    start_point.block_running = true;
    start_point.row_started = false;
    enable_feed_buttons(false);
    send_message(start_point.view, NEXT_ROW_MESSAGE, send_slot, 0);
}

// Between two rows one waiting message is served, so that Cancel and the screen stay alive also where the
// filters drop row after row.
void feed_next_row() {
    while (start_point.block_running) {
        if (!start_point.row_started) {
            if (is_over()) {
                stop_feed();
                return;
            }
            pump_one_message();
            if (!start_point.block_running)
                return;
            start_row();
        }
        if (fill_piece()) {
            transfer_step(send_slot, STEP_SEND);
            return;
        }
        if (!leave_row())
            return;
    }
}

// What is still on its way out is dropped first: it is read from the buffers that are cleared behind it.
void cancel_feed() {
    {
        const LockGuard guard(port_slot[send_slot].step_lock);
        if (port_slot[send_slot].write_running && port_slot[send_slot].connected)
            line_purge(port_slot[send_slot].port_handle);
        port_slot[send_slot].write_running = 0;
        reset_transfer(send_slot);
        transfer_state[send_slot].status = PORT_IDLE;
    }
    stop_feed();
}

void stop_feed() {
    {
        const LockGuard guard(port_slot[send_slot].step_lock);
        transfer_state[send_slot].status = PORT_IDLE;
    }
    start_point.block_running = false;
    start_point.row_started = false;
    block_mode = 0;
    row_sent = 0;
    enable_feed_buttons(true);
}

}  // namespace hexlane
