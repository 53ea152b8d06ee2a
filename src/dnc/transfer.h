// transfer.h: sending and receiving a file on a slot: preparing, the one step function, and the ends.
#pragma once

#include "dnc/transfer_state.h"

#include <cstddef>
#include <cstdint>

namespace hexlane {

constexpr int STEP_RECEIVE = 2;
constexpr int STEP_SEND = 3;
constexpr int STEP_NONE = 4;

// One step of the slot's transfer, under its lock. 0 when the slot is not connected, else 1. Any thread.
int transfer_step(int slot, int op);

// Fills the first output buffer of a send and sets total_bytes; file_name, start_offset and file_position are
// set and the port is open, with status SEND_STANDBY since before the opening if the machine's request is
// awaited. With send_now the first write goes out at once. Main thread. Gives 1; 0 when the file cannot be
// read, and then status is PORT_IDLE. A line that has gone since the opening is told by
// TRANSFER_FAILED_MESSAGE; prepare_receive does the same.
int prepare_send(int slot);

// Notes what the slot's file is now; its reads are held against that. 0 when there is none, or it is too
// large.
int stamp_source(int slot);

// From SEND_STANDBY to SENDING: sets the line's normal handshake and writes what is prepared. Main thread.
void begin_sending(int slot);

// Makes the file of a receive, empty, in the place of file_name, and begins. 1, or 0 on failure with the
// reason in platform::last_file_error(). Main thread.
int prepare_receive(int slot);

// Receives into `file`, which is taken over: takes what has come already or waits for the first byte; the
// port is open. Main thread.
void begin_receiving(int slot, platform::FileHandle file);

// Closes the file of a receive, flushed, and notes as the transfer's fault bytes that the line has lost. 1; 0
// when the medium did not take it all, which is noted too. Under the slot's lock, or with no worker running.
int close_received_file(int slot);

// For a tick of a timer: ends a receive behind its time of silence and closes its file. 1 when it has done so
// just now: the port is to be closed. Main thread.
int end_silent_receive(int slot);

// Whether TRANSFER_DONE_MESSAGE, TRANSFER_FAILED_MESSAGE with this number are of the slot's present transfer,
// and its port is to be closed. Main thread.
bool send_has_ended(int slot, int64_t transfer_number);
bool transfer_has_failed(int slot, int64_t transfer_number);

// Reading of the file that is sent, a piece or a line at a time, each with an open of its own. Under the
// slot's lock.
void read_chunk(int slot);
void read_line(int slot);

// Notes bytes of the file as taken from it or put into it by this transfer, for its receipt. Under the slot's
// lock.
void count_taken(int slot, const uint8_t* bytes, std::size_t count);

// The steps of transfer_step for a caller that holds the lock already, and the worker's start of a queued
// send.
int transfer_step_locked(int slot, int op);
void set_sending_handshake(int slot);

}  // namespace hexlane
