// transfer_step.cpp: preparing a transfer, its steps, and its end.

#include "dnc/transfer.h"

#include "dnc/crc32.h"
#include "dnc/filters.h"
#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/received_file.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/threads.h"
#include "shell/child.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int MS_PER_SECOND = 1000;

int32_t next_transfer_number = 1;

bool line_mode(int slot) {
    return machine_setting(machine_of_slot(slot), Field::EOB_DELAY_MS) != 0;
}

// A line that has gone behind the opening stays so.
void begin_transfer(TransferState& t) {
    t.transfer_number = next_transfer_number++;
    if (t.fault != TransferFault::LINE_GONE)
        t.fault = TransferFault::NONE;
    t.wait_for_ack = 0;
    t.tally = {};
}

// A transfer that is prepared on a line that went before ends at once: the worker has told of an earlier
// number.
void end_if_line_gone(int slot) {
    TransferState& t = transfer_state[slot];
    if (t.fault != TransferFault::LINE_GONE)
        return;
    t.status = PORT_IDLE;
    post_message(child[0].main_window, TRANSFER_FAILED_MESSAGE, slot, t.transfer_number);
}

// Reads the next piece if the one in the file buffer is used up, and runs the filters over it. A stretch that
// they drop whole is followed by the next at once, since no write means no transmitter-empty.
void refill(int slot) {
    TransferState& t = transfer_state[slot];
    const bool by_line = line_mode(slot);
    t.out_index = 0;
    t.out_count = 0;
    while (!t.fill_done && t.out_count == 0) {
        if (t.in_index >= t.file_count && !t.last_buffer && t.carry_count == 0 && !t.source_ended) {
            if (by_line)
                read_line(slot);
            else
                read_chunk(slot);
        }
        const int32_t from = t.in_index;
        t.fill_done = static_cast<int16_t>(by_line ? fill_from_line(slot) : fill_from_buffer(slot));
        count_taken(slot, transfer_buffers[slot].file_buffer + from,
                    static_cast<std::size_t>(t.in_index - from));
    }
}

void write_output(int slot) {
    TransferState& t = transfer_state[slot];
    if (t.out_count == 0 || t.out_index >= OUTPUT_BUFFER_SIZE || port_slot[slot].write_running)
        return;
    const uint8_t* bytes = transfer_buffers[slot].output_buffer + t.out_index;
    const int count = t.out_count - t.out_index;
    t.tally.line_crc = crc32(t.tally.line_crc, bytes, static_cast<std::size_t>(count));
    port_write(bytes, count, slot);
}

// The file's size for a pass, or -1; its stamp is what the reads are held against.
int64_t take_source_stamp(TransferState& t) {
    t.source_sum = {};
    return path_stamp(t.file_name, &t.source_stamp) && t.source_stamp.size <= INT32_MAX ? t.source_stamp.size
                                                                                        : -1;
}

// A further pass over the whole file. 0 when it cannot be read any more.
int start_next_pass(int slot) {
    TransferState& t = transfer_state[slot];
    const int64_t size = take_source_stamp(t);
    if (size <= 0) {
        t.fault = TransferFault::SOURCE_CHANGED;
        return 0;
    }
    t.total_bytes = static_cast<int32_t>(size);
    refill(slot);
    return 1;
}

void end_send(int slot) {
    TransferState& t = transfer_state[slot];
    t.status = SEND_DONE;
    t.bytes_done = 0;
    post_message(child[0].main_window, TRANSFER_DONE_MESSAGE, slot, t.transfer_number);
}

// The start point screen fills the output buffer row by row, on its own slot; the other one goes on by
// itself.
bool is_fed_by_rows(int slot) {
    return block_mode && port_slot[slot].for_blocks;
}

void step_send(int slot) {
    TransferState& t = transfer_state[slot];
    const bool fed = is_fed_by_rows(slot);
    if (!fed && t.out_index >= t.out_count)
        refill(slot);
    if (t.out_count == 0 && t.fill_done && !fed) {
        const bool faulty = t.fault != TransferFault::NONE;
        reset_transfer(slot);
        if (!t.continuous || faulty || !start_next_pass(slot)) {
            end_send(slot);
            return;
        }
    }
    write_output(slot);
}

void fail_receive(int slot) {
    TransferState& t = transfer_state[slot];
    t.fault_error = last_file_error();
    t.fault = TransferFault::CANNOT_WRITE;
    t.status = RECEIVE_DONE;
    post_message(child[0].main_window, TRANSFER_FAILED_MESSAGE, slot, t.transfer_number);
}

// Filters `count` received bytes and puts them behind what the file holds.
int append_received(int count, int slot) {
    TransferState& t = transfer_state[slot];
    const uint8_t* received = transfer_buffers[slot].receive_buffer;
    t.tally.line_bytes += count;
    t.tally.line_crc = crc32(t.tally.line_crc, received, static_cast<std::size_t>(count));
    const int stored = receive_filter(count, received, slot);
    const uint8_t* bytes = transfer_buffers[slot].file_buffer;
    if (!file_write_at(t.file_handle, t.received_length, bytes, static_cast<std::size_t>(stored)))
        return 0;
    t.received_length += stored;
    count_taken(slot, bytes, static_cast<std::size_t>(stored));
    return 1;
}

// Takes all that is queued. Sizes are halved until something comes, so that a few bytes are waited for once.
void step_receive(int slot) {
    TransferState& t = transfer_state[slot];
    int count = 0;
    do {
        count = 0;
        for (int size = RECEIVE_CHUNK; size >= 1 && count == 0; size /= 2)
            count = port_read(transfer_buffers[slot].receive_buffer, size, slot);
        if (count > 0 && !append_received(count, slot)) {
            fail_receive(slot);
            return;
        }
        t.last_activity_tick = tick_ms();
    } while (count > 0);
}

// While a file goes out nobody reads what comes in; an answer has done its work by its event. It is dropped,
// since a full ring would stop the machine.
void drop_received(int slot) {
    uint8_t* bytes = transfer_buffers[slot].receive_buffer;
    while (line_read(port_slot[slot].port_handle, bytes, RECEIVE_CHUNK) > 0) {
    }
}

// While a queued send stands by: DC1 is the machine's request, any other byte is dropped. A request that
// comes ahead of the preparation waits in the queue.
void step_standby(int slot) {
    if (!transfer_state[slot].prepared)
        return;
    uint8_t byte = 0;
    while (transfer_state[slot].status == SEND_STANDBY && port_read(&byte, 1, slot) == 1) {
        if (byte == DC1)
            transfer_state[slot].status = XON_SEEN;
    }
}

}  // namespace

int transfer_step_locked(int slot, int op) {
    TransferState& t = transfer_state[slot];
    if (!port_slot[slot].connected)
        return 0;
    if (op == STEP_NONE && (t.status == SEND_DONE || t.status == RECEIVE_DONE)) {
        t.bytes_done = 0;
        t.status = PORT_IDLE;
    }
    if (op == STEP_SEND && t.status == SENDING)
        step_send(slot);
    if (op == STEP_RECEIVE && t.status == SENDING)
        drop_received(slot);
    else if (op == STEP_RECEIVE && t.status == RECEIVING)
        step_receive(slot);
    else if (op == STEP_RECEIVE && t.status == SEND_STANDBY)
        step_standby(slot);
    return 1;
}

int transfer_step(int slot, int op) {
    const LockGuard guard(port_slot[slot].step_lock);
    return transfer_step_locked(slot, op);
}

int stamp_source(int slot) {
    const LockGuard guard(port_slot[slot].step_lock);
    return take_source_stamp(transfer_state[slot]) >= 0;
}

int prepare_send(int slot) {
    TransferState& t = transfer_state[slot];
    bool asked = false;
    {
        const LockGuard guard(port_slot[slot].step_lock);
        t.status = SEND_STANDBY;
        t.prepared = 0;
        begin_transfer(t);
        const int64_t size = take_source_stamp(t);
        if (size < 0) {
            t.status = PORT_IDLE;
            return 0;
        }
        t.total_bytes = static_cast<int32_t>(size) - t.start_offset;
        t.bytes_done = t.start_offset;
        t.need_start = 1;
        t.in_index = 0;
        t.out_count = 0;
        t.out_index = 0;
        t.file_count = 0;
        t.carry_count = 0;
        t.source_count = 0;
        t.block_count = 0;
        t.block_check = 0;
        t.last_buffer = 0;
        t.nul_behind = 0;
        t.fill_done = 0;
        t.end_sent = 0;
        t.source_ended = 0;
        refill(slot);
        t.continuous = send_continuous;
        t.prepared = 1;
        transfer_step_locked(slot, STEP_RECEIVE);  // the machine may have asked already
        asked = t.status == XON_SEEN;
        t.status = SEND_STANDBY;
        end_if_line_gone(slot);
    }
    if (send_now || asked)
        begin_sending(slot);
    return 1;
}

void set_sending_handshake(int slot) {
    LineSettings settings;
    if (!line_settings(port_slot[slot].port_handle, &settings))
        return;
    settings.xon_char = XON_CHAR;
    line_configure(port_slot[slot].port_handle, settings);
}

void begin_sending(int slot) {
    if (!port_slot[slot].connected)
        return;
    const LockGuard guard(port_slot[slot].step_lock);
    TransferState& t = transfer_state[slot];
    if (t.status != SEND_STANDBY)
        return;
    set_sending_handshake(slot);
    t.first_block = 1;
    t.status = SENDING;
    transfer_step_locked(slot, STEP_SEND);
}

int prepare_receive(int slot) {
    const FileHandle file = make_received_file(transfer_state[slot].file_name);
    if (file == NO_FILE)
        return 0;
    begin_receiving(slot, file);
    return 1;
}

void begin_receiving(int slot, FileHandle file) {
    TransferState& t = transfer_state[slot];
    const LockGuard guard(port_slot[slot].step_lock);
    t.file_handle = file;
    begin_transfer(t);
    t.received_length = 0;
    port_slot[slot].last_in_queue = 0;
    t.bytes_done = 0;
    t.status = RECEIVE_STANDBY;
    if (line_queue_length(port_slot[slot].port_handle) > 0) {  // the machine has begun already
        t.status = RECEIVING;
        transfer_step_locked(slot, STEP_RECEIVE);
    }
    end_if_line_gone(slot);
}

int close_received_file(int slot) {
    TransferState& t = transfer_state[slot];
    if (t.file_handle == NO_FILE)
        return 1;
    LineErrors errors = {};
    if (line_errors(port_slot[slot].port_handle, &errors) && errors.overrun > 0 &&
        t.fault == TransferFault::NONE)
        t.fault = TransferFault::BYTES_LOST;
    const int flushed = file_flush(t.file_handle);
    const int closed = file_close(t.file_handle);
    t.file_handle = NO_FILE;
    if (flushed && closed)
        return 1;
    if (t.fault == TransferFault::NONE) {
        t.fault_error = last_file_error();
        t.fault = TransferFault::CANNOT_WRITE;
    }
    return 0;
}

int end_silent_receive(int slot) {
    TransferState& t = transfer_state[slot];
    if (t.status != RECEIVING)
        return 0;
    const int limit = machine_setting(machine_of_slot(slot), Field::RECEIVE_TIMEOUT_S) * MS_PER_SECOND;
    {
        const LockGuard guard(port_slot[slot].step_lock);
        if (t.status != RECEIVING || tick_ms() - t.last_activity_tick < static_cast<uint32_t>(limit))
            return 0;
        t.status = RECEIVE_DONE;
        close_received_file(slot);
    }
    return 1;
}

bool send_has_ended(int slot, int64_t transfer_number) {
    const TransferState& t = transfer_state[slot];
    return port_slot[slot].connected && t.status == SEND_DONE && t.transfer_number == transfer_number;
}

bool transfer_has_failed(int slot, int64_t transfer_number) {
    const TransferState& t = transfer_state[slot];
    return port_slot[slot].connected && t.fault != TransferFault::NONE &&
           t.transfer_number == transfer_number;
}

}  // namespace hexlane
