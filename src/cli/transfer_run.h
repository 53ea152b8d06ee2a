// transfer_run.h: one transfer without a desktop, on slot 0: its options, its run through the message loop,
// and what it leaves for the receipt. Main thread only.
#pragma once

#include "cli/cli.h"
#include "dnc/transfer_state.h"
#include "platform/text.h"

#include <cstdint>
#include <string>

namespace hexlane {

struct TransferOptions {
    std::string machine;  // number or name; empty: the current one
    std::string port;     // device or COM1 to COM4; empty: the machine's
    std::string file;
    bool queue = false;
    bool continuous = false;
    int64_t from_row = 1;
    bool replace = false;
    int64_t timeout_s = 0;  // silence that ends a receive; 0: the machine's
    int64_t wait_s = 0;     // for the first byte; 0: for ever
};

struct TransferRun {
    TransferOptions options;
    bool sending;
    int machine;  // from 0
    char file[platform::PATH_SIZE];
    const char* left;  // behind the end: the file that has been sent, or holds what has come
    int com;           // 1 to 4
    char port[platform::PATH_SIZE + 16];  // "COM1 (/dev/ttyS0)"
    uint32_t rate;                        // as the driver has set it
    int64_t file_size;                    // of a file that is sent, from the start point on
    int64_t start_tick_ns;
    int64_t end_tick_ns;
    char started[32];  // times of day
    char ended[32];
    int64_t held_ns;    // the machine held the line
    bool held;          // now
    bool stopped;       // by a signal
    bool nothing_came;  // within wait_s
    bool not_in_place;  // all has come, and could not get its name
    int64_t cut_bytes;  // handed to the line in a write that has not ended
    int64_t line_now;   // bytes over the line so far, those of the running write too
    int64_t file_now;   // bytes of the file that these stand for, nearly
    int8_t status;      // the last one before the port was closed
    TransferFault fault;
    TransferTally tally;
};

// The run; made by begin_run and wiped by nobody.
extern TransferRun run;

// Reads the words of a send or a receive. Gives the reason of a refusal, or "".
std::string read_transfer_options(const Words& words, bool sending, TransferOptions* options);

// Chooses machine and port and opens it. An exit code other than EXIT_COMPLETE, told already, on failure.
int open_transfer_port();

// Runs a prepared transfer to its end and closes the port. Gives the exit code.
int run_transfer();

// The receipt on standard output.
void print_receipt();

// ---- The line on standard error (progress.cpp) -------------------------------------------------------

// On a terminal a line that is written over; otherwise one line at the start.
void begin_progress();
void show_progress(int64_t now_ns);
void end_progress();

}  // namespace hexlane
