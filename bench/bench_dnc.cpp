// bench_dnc.cpp: the filters between file and line, in bytes of the file a second.

#include "dnc/filters.h"
#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer_state.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

namespace hexlane::bench {

namespace {

enum Form { GENERAL, EIA, COMPRESSED, BRIDGEPORT, HEIDENHAIN };

void set_form(int form) {
    set_machine_defaults();
    slot_machine[0] = 0;
    MachineParams& machine = machine_table[0];
    machine.data_type = form == EIA ? DATA_EIA : DATA_ASCII;
    machine.eob_conversion = form == EIA ? EOB_LF : 0;
    machine.protocol = form == BRIDGEPORT   ? PROTOCOL_BRIDGEPORT
                       : form == HEIDENHAIN ? PROTOCOL_HEIDENHAIN
                                            : 0;
    const uint8_t compress = form == COMPRESSED ? 1 : 0;
    machine.compress_comments = compress;
    machine.compress_line_numbers = compress;
    machine.compress_spaces = compress;
    machine.compress_tabs = compress;
}

// A piece of a program fills the file buffer.
int fill_source() {
    uint8_t* buffer = transfer_buffers[0].file_buffer;
    int length = 0;
    for (int row = 10; length + 60 < FILE_BUFFER_SIZE; row += 10)
        length += std::snprintf(reinterpret_cast<char*>(buffer) + length, 60,
                                "N%d G1 X%d.%03d Y-%d.5 (CUT)\r\n", row, row % 300, row % 997, row % 89);
    return length;
}

void SendFilter(benchmark::State& state) {
    set_form(static_cast<int>(state.range(0)));
    TransferState& t = transfer_state[0];
    reset_transfer(0);
    port_apply_machine(0, machine_table[0]);
    const int length = fill_source();
    for (auto _ : state) {
        t.in_index = 0;
        t.file_count = length;
        t.source_count = 0;
        t.total_bytes = INT32_MAX;
        while (t.in_index < length) {
            fill_from_buffer(0);
            t.wait_for_ack = 0;
            benchmark::DoNotOptimize(transfer_buffers[0].output_buffer[0]);
        }
    }
    state.SetBytesProcessed(state.iterations() * length);
}

void ReceiveFilter(benchmark::State& state) {
    set_form(static_cast<int>(state.range(0)));
    port_apply_machine(0, machine_table[0]);
    static uint8_t line[RECEIVE_CHUNK];
    fill_source();
    std::memcpy(line, transfer_buffers[0].file_buffer, sizeof line);
    for (auto _ : state)
        benchmark::DoNotOptimize(receive_filter(RECEIVE_CHUNK, line, 0));
    state.SetBytesProcessed(state.iterations() * RECEIVE_CHUNK);
}

BENCHMARK(SendFilter)
    ->ArgName("general0_eia1_compressed2_bridgeport3_heidenhain4")
    ->DenseRange(GENERAL, HEIDENHAIN);
BENCHMARK(ReceiveFilter)->ArgName("general0_eia1")->DenseRange(GENERAL, EIA);

}  // namespace

}  // namespace hexlane::bench
