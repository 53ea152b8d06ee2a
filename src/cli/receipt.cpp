// receipt.cpp: what a transfer was, on standard output, a line for each thing.

#include "cli/machine_text.h"
#include "cli/transfer_run.h"
#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace hexlane {

namespace {

void print_time(const char* name, std::time_t time) {
    char text[32] = "";
    tm local;
    if (localtime_r(&time, &local) != nullptr)
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    std::printf("%-10s%s\n", name, text);
}

constexpr const char* COMPLETE = "complete";

const char* result_text() {
    if (run.nothing_came)
        return "nothing came";
    if (run.stopped)
        return "stopped";
    if (run.fault != TransferFault::NONE || (run.status != SEND_DONE && run.status != RECEIVE_DONE))
        return "not complete";
    return COMPLETE;
}

bool is_complete() {
    return std::strcmp(result_text(), COMPLETE) == 0;
}

// A send that has not come to its end may have read more of the file than has gone out.
void print_file_bytes() {
    const bool ahead = run.sending && !is_complete();
    std::printf("%-10s%" PRId64 " bytes%s, CRC-32 %08" PRIx32 "\n", "file", run.tally.file_bytes,
                ahead ? " read" : "", run.tally.file_crc);
}

// A stopped write has gone out in part: its bytes are counted, but a checksum of part of them means nothing.
void print_line_bytes() {
    std::printf("%-10s%" PRId64 " bytes", "line", run.tally.line_bytes + run.cut_bytes);
    if (!run.sending || is_complete())
        std::printf(", CRC-32 %08" PRIx32, run.tally.line_crc);
    std::printf("\n");
}

bool in_blocks(int protocol) {
    return protocol == PROTOCOL_BRIDGEPORT || protocol == PROTOCOL_HEIDENHAIN;
}

}  // namespace

void print_receipt() {
    const MachineParams& machine = machine_table[run.machine];
    char name[MACHINE_NAME_SIZE];
    platform::copy_text(name, sizeof name, machine.name);
    std::printf("%-10s%s\n", run.sending ? "sent" : "received", run.file);
    std::printf("%-10s%d, %s, %s, %s\n", "machine", run.machine + 1, name, protocol_word(machine).c_str(),
                data_type_word(machine).c_str());
    std::printf("%-10s%s, %" PRIu32 " baud\n", "port", port_text().c_str(), run.rate);
    print_file_bytes();
    print_line_bytes();
    if (run.sending && in_blocks(machine_setting(machine, Field::PROTOCOL)))
        std::printf("%-10s%d, %d answered\n", "blocks", run.tally.blocks, run.tally.acks);
    if (run.sending)
        std::printf("%-10s%.2f s\n", "held", static_cast<double>(run.held_ns) / 1e9);
    print_time("started", run.start_time);
    print_time("ended", run.end_time);
    std::printf("%-10s%.2f s\n", "took", static_cast<double>(run.end_tick_ns - run.start_tick_ns) / 1e9);
    std::printf("%-10s%s\n", "result", result_text());
}

}  // namespace hexlane
