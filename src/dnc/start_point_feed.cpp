// start_point_feed.cpp: rows handed to the machine one by one, as fast as it takes them. The block worker
// asks for the next row when one has left the line and, where the protocol wants it, has been answered.

#include "dnc/activity.h"
#include "dnc/filters.h"
#include "dnc/port_engine.h"
#include "dnc/row_index.h"
#include "dnc/start_point_internal.h"
#include "dnc/transfer.h"
#include "platform/desktop.h"

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
    const int64_t end = row_offset(start_point.cursor_row + 1);
    t.out_index = 0;
    t.out_count = 0;
    while (t.out_count == 0) {
        if (t.in_index >= t.file_count && t.carry_count == 0) {
            if (t.last_buffer || end < 0 || t.file_position >= end)
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

bool is_last_row() {
    const int32_t row = start_point.cursor_row;
    return !start_point.block_marked || row >= start_point.block_end_row || row + 1 >= row_count();
}

}  // namespace

void begin_feed() {
    {
        const LockGuard guard(port_slot[send_slot].step_lock);
        reset_transfer(send_slot);
        transfer_state[send_slot].wait_for_ack = 0;
        transfer_state[send_slot].status = SENDING;
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
    post_message(start_point.view, NEXT_ROW_MESSAGE, send_slot, 0);
}

void feed_next_row() {
    if (!start_point.block_running)
        return;
    const bool out_of_block = start_point.block_marked && start_point.cursor_row > start_point.block_end_row;
    if (!start_point.row_started && (out_of_block || start_point.cursor_row >= row_count())) {
        stop_feed();
        return;
    }
    if (!start_point.row_started)
        start_row();
    if (fill_piece()) {
        transfer_step(send_slot, STEP_SEND);
        return;
    }
    // The row has gone, or the filters have dropped it whole.
    const bool last = is_last_row();
    start_point.row_started = false;
    move_cursor_down();
    if (last)
        stop_feed();
    else
        post_message(start_point.view, NEXT_ROW_MESSAGE, send_slot, 0);
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
