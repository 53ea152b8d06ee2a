// receipt.h: what a transfer was, as short texts with names: hexlane-cli prints a line for each, the log of
// the activity screen joins them in one line. Pure; any thread.
#pragma once

#include "dnc/machine_format.h"
#include "dnc/transfer_state.h"

#include <cstddef>
#include <cstdint>

namespace hexlane {

struct Receipt {
    bool sending;
    bool complete;
    const char* file;
    int machine;  // from 0
    const MachineParams* settings;
    const char* port;  // "COM1 (/dev/ttyS0)"
    uint32_t rate;     // as the driver has set it
    TransferTally tally;
    int64_t cut_bytes;  // handed to the line in a write that did not end
    double held_s;      // the machine held the line
    const char* started;
    const char* ended;
    double took_s;
    const char* result;  // in a word or two
};

struct ReceiptEntry {
    const char* name;
    char text[platform::PATH_SIZE + 32];
};
constexpr int RECEIPT_ENTRIES = 11;  // at most

// Fills `entries` in the order in which they are read. Gives their number.
int receipt_entries(const Receipt& receipt, ReceiptEntry entries[RECEIPT_ENTRIES]);

// Whether the machine's protocol goes in blocks that are counted.
bool goes_in_blocks(const MachineParams& machine);

}  // namespace hexlane
