// receipt.cpp: what a transfer was, on standard output, a line for each thing.

#include "dnc/receipt.h"
#include "cli/transfer_run.h"
#include "dnc/machine_table.h"

#include <cstdio>
#include <cstring>

namespace hexlane {

namespace {

constexpr const char* COMPLETE = "complete";

const char* result_text() {
    if (run.nothing_came)
        return "nothing came";
    if (run.stopped)
        return "stopped";
    if (run.not_in_place || run.fault != TransferFault::NONE ||
        (run.status != SEND_DONE && run.status != RECEIVE_DONE))
        return "not complete";
    return COMPLETE;
}

}  // namespace

void print_receipt() {
    const char* result = result_text();
    Receipt receipt = {};
    receipt.sending = run.sending;
    receipt.complete = std::strcmp(result, COMPLETE) == 0;
    receipt.file = run.left;
    receipt.machine = run.machine;
    receipt.settings = &machine_table[run.machine];
    receipt.port = run.port;
    receipt.rate = run.rate;
    receipt.tally = run.tally;
    receipt.cut_bytes = run.cut_bytes;
    receipt.held_s = static_cast<double>(run.held_ns) / 1e9;
    receipt.started = run.started;
    receipt.ended = run.ended;
    receipt.took_s = static_cast<double>(run.end_tick_ns - run.start_tick_ns) / 1e9;
    receipt.result = result;
    ReceiptEntry entries[RECEIPT_ENTRIES];
    const int count = receipt_entries(receipt, entries);
    for (int i = 0; i < count; i++)
        std::printf("%-10s%s\n", entries[i].name, entries[i].text);
}

}  // namespace hexlane
