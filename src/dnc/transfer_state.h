// transfer_state.h: the record of a slot's transfer, its status, and its buffers.
// Each field tells who writes it: [main] the main thread, [worker] the slot's worker, [lock] either, under
// the slot's step_lock (port_engine.h). Atomic fields are read and written without the lock.
#pragma once

#include "dnc/machine_table.h"
#include "platform/files.h"
#include "platform/text.h"

#include <atomic>
#include <cstdint>

namespace hexlane {

constexpr int FILE_BUFFER_SIZE = 10240;   // bytes
constexpr int OUTPUT_BUFFER_SIZE = 5120;  // bytes
constexpr int FILL_LIMIT = 1706;          // file bytes that one fill takes at most
constexpr int LINE_LIMIT = 256;           // bytes of one line read
constexpr int RECEIVE_CHUNK = 2048;       // bytes
constexpr int BRIDGEPORT_BLOCK = 251;     // bytes

constexpr uint8_t STX = 0x02;
constexpr uint8_t ETX = 0x03;
constexpr uint8_t EOT = 0x04;
constexpr uint8_t ACK = 0x06;
constexpr uint8_t FF = 0x0C;
constexpr uint8_t DC1 = 0x11;
constexpr uint8_t ETB = 0x17;

// `status`. How it changes:
//   PORT_IDLE -> SEND_STANDBY: a send is prepared (prepare_send)
//   SEND_STANDBY -> SENDING: Now, or Send pressed again (begin_sending); DC1 through XON_SEEN (the worker)
//   SENDING -> SEND_DONE: the file has gone out (transfer_step)
//   PORT_IDLE -> RECEIVE_STANDBY: a receive is prepared (prepare_receive)
//   RECEIVE_STANDBY -> RECEIVING: the first byte (the worker; prepare_receive, if it has come already)
//   RECEIVING -> RECEIVE_DONE: silence (check_receive_timeout), or a full disk (transfer_step)
//   SEND_DONE, RECEIVE_DONE -> PORT_IDLE: the port is opened again (port_open)
//   any -> PORT_IDLE: Stop, or the line has gone
constexpr int8_t PORT_IDLE = 0;
constexpr int8_t SEND_DONE = 10;
constexpr int8_t SENDING = 11;
constexpr int8_t SEND_STANDBY = 12;
constexpr int8_t XON_SEEN = 13;  // inside the worker only
constexpr int8_t RECEIVE_DONE = 20;
constexpr int8_t RECEIVING = 21;
constexpr int8_t RECEIVE_STANDBY = 22;

// Why a transfer was not what it should be. Told when its port is closed.
enum class TransferFault : int8_t {
    NONE,
    LINE_GONE,       // the device has vanished or hung up
    SOURCE_CHANGED,  // the file that is being sent was changed, replaced or removed
    CANNOT_READ,     // the file that is being sent could not be read
    CANNOT_WRITE,    // received bytes could not be stored
    BYTES_LOST,      // received bytes were lost on the way: the driver or the device had no room for them
};

// One transfer's numbers for its receipt; wiped by prepare_send and prepare_receive. [lock]
struct TransferTally {
    int64_t line_bytes;  // over the line, framing included
    int64_t file_bytes;  // taken from or written to the file
    int32_t blocks;      // closed by a block check or an end of block that is answered
    int32_t acks;        // answers that ended a wait
    uint32_t line_crc;   // CRC-32 of the bytes over the line
    uint32_t file_crc;   // CRC-32 of the bytes of the file
};

// Of the first bytes of a file that is sent, as far as the look ahead has come.
struct SourceSum {
    int64_t bytes;
    uint32_t crc;  // CRC-32
};

// The run; the numbers of one transfer are wiped by reset_transfer, prepare_send and prepare_receive.
struct TransferState {
    std::atomic<uint32_t> last_activity_tick;  // tick_ms at the last received data [worker]
    std::atomic<int32_t> bytes_done;           // bytes over the line in this transfer [lock]
    std::atomic<int32_t> total_bytes;          // bytes of the file that this transfer takes [lock]
    std::atomic<int32_t> continuous;           // the file is sent again and again [lock]
    int32_t start_now;                         // the send does not wait for the machine's request [main]
    int32_t out_index;                         // how much of the output buffer has gone out [lock]
    int32_t in_index;                          // next byte of the file buffer [lock]
    int32_t out_count;                         // bytes in the output buffer [lock]
    int32_t source_count;                      // file bytes that the filters have taken in this pass [lock]
    int32_t block_count;                       // bytes in the current BRIDGEPORT block [lock]
    int32_t start_offset;                      // byte of the file at which the send begins [main]
    int32_t file_position;                     // byte of the file that is read next [lock]
    int16_t need_start;                        // the start sequence is still to go out [lock]
    int16_t end_sent;                          // the end sequence has been made [lock]
    int16_t fill_done;                         // nothing more will go into the output buffer [lock]
    int16_t source_ended;                      // the filters have taken the last byte of the file [lock]
    int16_t last_buffer;                       // the file buffer holds the file's last piece [lock]
    int16_t eob_on;                            // end-of-block conversion, from the machine [lock]
    int16_t eob_length;
    uint8_t eob_bytes[4];
    std::atomic<int16_t> wait_for_ack;    // the machine's ACK is awaited ahead of the next block [lock]
    uint8_t block_check;                  // running exclusive-or of the block [lock]
    char file_name[platform::PATH_SIZE];  // stays on show behind the transfer [main]
    std::atomic<int8_t> status;
    std::atomic<int32_t> first_block;  // the delay ahead of the first write is still owed [lock]
    platform::FileHandle file_handle = platform::NO_FILE;  // the file being received [lock]
    uint8_t xoff_char;                                     // from the machine [lock]

    // Of this transfer beyond what the filters need.
    int16_t prepared;         // the first buffer is filled: the machine's request may be taken [lock]
    int16_t nul_behind;       // a NUL has been skipped behind the line in the file buffer [lock]
    int32_t transfer_number;  // goes with TRANSFER_DONE_MESSAGE [lock]
    int32_t file_count;       // bytes in the file buffer [lock]
    int32_t carry_count;      // bytes of carry_buffer that wait for the next fill [lock]
    int64_t received_length;  // bytes in the file being received [lock]
    platform::FileStamp source_stamp;  // what the file was when the send was prepared [lock]
    SourceSum source_sum;              // of the file with that stamp [lock]
    platform::FileError fault_error;   // why, for CANNOT_READ and CANNOT_WRITE [lock]
    std::atomic<TransferFault> fault;  // [lock]
    TransferTally tally;
    // What the compression has seen of the file; lives across lines and pieces.
    int32_t in_comment;
    int32_t in_line_number;
    int32_t comment_dropped;
    int32_t line_has_output;
};

extern TransferState transfer_state[SLOT_COUNT];

// What did not fit the output buffer: a long start or end sequence, and what one file byte brings behind it.
constexpr int CARRY_BUFFER_SIZE = 2304;

struct TransferBuffers {
    uint8_t file_buffer[FILE_BUFFER_SIZE + 1];  // one more for the NUL behind a line
    uint8_t output_buffer[OUTPUT_BUFFER_SIZE];
    uint8_t carry_buffer[CARRY_BUFFER_SIZE];
    uint8_t receive_buffer[4096];
};
extern TransferBuffers transfer_buffers[SLOT_COUNT];

// The last answers of Send Properties, for both slots.
extern int32_t send_continuous;
extern int32_t send_now;

// Clears both buffers and the places in them; bytes_done, status and file_name stay. Call under the slot's
// lock.
void reset_transfer(int slot);

// Whether `path` is the file of a slot that sends, receives or stands by.
bool is_active_file(const char* path);

// Whether the slot sends, receives or stands by.
bool slot_is_busy(int slot);

}  // namespace hexlane
