// bench_ncutils.cpp: what the NC utilities do to one row, and a run over a document.

#include "document.h"
#include "ncutils/line_numbers.h"
#include "ncutils/utilities.h"
#include "shell/store_limits.h"

#include <benchmark/benchmark.h>

namespace hexlane::bench {

namespace {

constexpr const char* ROW = "N1203450 G1 X-292.509 Y277.947 Z-17.441 F850";
constexpr LetterSet XYZ = letter_bit('X') | letter_bit('Y') | letter_bit('Z');

void RewriteWords(benchmark::State& state) {
    WordRun run = {XYZ, 3, scale_number, 25.4F, {}};
    char out[ROW_BUFFER_SIZE];
    for (auto _ : state)
        benchmark::DoNotOptimize(rewrite_words(&run, ROW, out, sizeof out));
    state.SetItemsProcessed(state.iterations());
}

void RenumberRowText(benchmark::State& state) {
    Numbering numbering = {1, 1, 4, 0, true, 1};
    char out[ROW_BUFFER_SIZE];
    for (auto _ : state)
        benchmark::DoNotOptimize(renumber_row_text(&numbering, ROW, out, sizeof out));
    state.SetItemsProcessed(state.iterations());
}

void ScaleDocument(benchmark::State& state) {
    const int32_t rows = static_cast<int32_t>(state.range(0));
    open_document(rows);
    for (auto _ : state) {
        state.PauseTiming();
        reload_document();
        state.ResumeTiming();
        WordRun words = {XYZ, 3, scale_number, 25.4F, {}};
        RowRun run;
        if (!run_over_words(&words, 0, &run) || run.stopped)
            state.SkipWithError("a row could not be read or stored");
    }
    state.SetItemsProcessed(state.iterations() * rows);
}

BENCHMARK(RewriteWords);
BENCHMARK(RenumberRowText);
BENCHMARK(ScaleDocument)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace hexlane::bench
