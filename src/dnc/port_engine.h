// port_engine.h: the two port slots: opening and closing a line with its worker, reading and writing.
// A slot is opened for each transfer. Its worker turns line events into steps of the transfer (transfer.h).
// Main thread, but for port_read and port_write, which run inside a step under the slot's lock.
#pragma once

#include "dnc/machine_table.h"
#include "platform/messages.h"
#include "platform/serial.h"
#include "platform/threads.h"

#include <atomic>
#include <cstdint>

namespace hexlane {

constexpr uint8_t XON_CHAR = 0x11;
constexpr uint8_t ACK_CHAR = 0x06;
constexpr uint32_t PORT_EVENT_MASK =
    platform::EV_RXCHAR | platform::EV_RXFLAG | platform::EV_TXEMPTY | platform::EV_CTS;

// Messages to the main window: first is the slot, second the transfer's number.
constexpr uint32_t TRANSFER_DONE_MESSAGE = 0x45;
constexpr uint32_t TRANSFER_FAILED_MESSAGE = 0x8003;  // the line has gone, or received bytes cannot be stored
// Sent by the block worker to the start point screen.
constexpr uint32_t NEXT_ROW_MESSAGE = 0x43;

constexpr uint8_t FLOW_RTS_CTS = 2;
constexpr uint8_t FLOW_XON_XOFF = 4;

// The run. Who writes: [main], [worker], [lock] as in transfer_state.h.
struct PortSlot {
    platform::LineHandle port_handle = platform::NO_LINE;  // [main]
    uint8_t port_number;                                   // 1 to 4 [main]
    std::atomic<int32_t> connected;        // from a successful open until a close begins [main]
    uint8_t byte_size;                     // 7 or 8 [main]
    uint8_t flow_control;                  // FLOW_ [main]
    uint8_t parity;                        // platform::PARITY_ [main]
    uint8_t stop_bits;                     // platform::STOP_BITS_ [main]
    uint32_t baud_rate;                    // as asked [main]
    platform::LockHandle step_lock;        // taken for every step; made once for the run
    platform::ThreadHandle worker_thread;  // NO_THREAD when none [main]
    int32_t last_in_queue;                 // receive queue at the last read attempt [lock]
    int32_t write_count;                   // bytes of the write that runs, or ran last [lock]
    std::atomic<int32_t> write_running;    // its transmitter-empty has not come yet [lock]
    bool for_blocks;                       // the worker is the block worker [main]
};
extern PortSlot port_slot[SLOT_COUNT];

// Flags of the start point screen that the block worker and the step look at.
extern std::atomic<int32_t> block_mode;            // rows are fed one at a time
extern std::atomic<int32_t> row_sent;              // the end of the row's write has been seen
extern platform::WindowHandle start_point_window;  // NO_WINDOW when it is not up

// Makes the slot ready for an open with the settings of `machine`. 1, or -1 when a lock cannot be made.
int port_init(int slot, const MachineParams& machine);

// Copies a machine's line settings into the slot.
void port_apply_machine(int slot, const MachineParams& machine);

// port_apply_machine for the slot's machine, then writes the line settings. 1, or 0 on failure.
int port_configure(int slot);

// Opens the port of the slot's machine with the worker, or the block worker. 1; 0 when it cannot be opened,
// and line_problem_text says why; -1 when no worker can start.
int port_open(int slot);
int port_open_for_blocks(int slot);

// Closes without a question and without a message. A file that is being received is closed too.
void port_close(int slot);

// port_close in its two halves, for whoever tells how the transfer ended between them: behind the first no
// step is taken any more and the receipt is written; the second ends the worker and gives the line back.
// Needs: connected.
void port_disconnect(int slot);
void port_release(int slot);

// Reads into `buffer` what is queued, by the rule that a small amount is taken only when it has not grown
// since the last attempt. Gives the number of bytes.
int port_read(uint8_t* buffer, int size, int slot);

// Starts a write; EV_TXEMPTY tells its end.
void port_write(const uint8_t* bytes, int count, int slot);

// Bytes of the write that runs which have left already; 0 when none runs. Under the slot's lock, or with no
// worker running.
int32_t bytes_of_running_write(int slot);

// The worker's thread (port_worker.cpp).
int64_t port_worker(int64_t slot);

}  // namespace hexlane
