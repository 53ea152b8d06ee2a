// bench_store.cpp: the store's costs: the scan of a load, a fetch, a commit, a row put in and taken out, a
// save.

#include "document.h"
#include "platform/text.h"
#include "shell/child.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "store/save.h"

#include <benchmark/benchmark.h>

namespace hexlane::bench {

namespace {

constexpr int32_t SMALL = 10000;
constexpr int32_t LARGE = 1000000;

void LoadScan(benchmark::State& state) {
    const int32_t rows = static_cast<int32_t>(state.range(0));
    open_document(rows);
    for (auto _ : state)
        reload_document();
    state.SetItemsProcessed(state.iterations() * rows);
}

void FetchInOrder(benchmark::State& state) {
    const int32_t rows = static_cast<int32_t>(state.range(0));
    open_document(rows);
    int32_t row = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(fetch_row(row));
        row = row + 1 < rows ? row + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

// Steps that no window of records or text can serve from memory.
void FetchAnywhere(benchmark::State& state) {
    const int32_t rows = static_cast<int32_t>(state.range(0));
    open_document(rows);
    uint32_t place = 1;
    for (auto _ : state) {
        place = place * 1664525u + 1013904223u;
        benchmark::DoNotOptimize(fetch_row(static_cast<int32_t>(place % static_cast<uint32_t>(rows))));
    }
    state.SetItemsProcessed(state.iterations());
}

// What a utility does to every row of a document.
void FetchAndCommit(benchmark::State& state) {
    const int32_t rows = static_cast<int32_t>(state.range(0));
    open_document(rows);
    int32_t row = 0;
    for (auto _ : state) {
        if (!fetch_row(row) || !commit_row(row))
            state.SkipWithError("a row could not be read or stored");
        row = row + 1 < rows ? row + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

// Near the end of the document: what every row in front of it costs shows here.
void InsertAndDelete(benchmark::State& state) {
    const int32_t rows = static_cast<int32_t>(state.range(0));
    open_document(rows);
    const int32_t row = rows - 1000;
    for (auto _ : state) {
        if (!insert_blank_rows(row, 1) || !delete_rows(row, 1))
            state.SkipWithError("the table could not be changed");
    }
    state.SetItemsProcessed(state.iterations());
}

// One changed row in the middle; flushing to the medium is part of it.
void SaveWalk(benchmark::State& state) {
    const int32_t rows = static_cast<int32_t>(state.range(0));
    open_document(rows);
    for (auto _ : state) {
        state.PauseTiming();
        reload_document();
        child[0].modified = 1;
        if (!fetch_row(rows / 2) || !commit_row(rows / 2))
            state.SkipWithError("a row could not be read or stored");
        state.ResumeTiming();
        if (!save_file())
            state.SkipWithError("the document could not be saved");
    }
    state.SetItemsProcessed(state.iterations() * rows);
}

BENCHMARK(LoadScan)->Arg(SMALL)->Arg(LARGE)->Unit(benchmark::kMillisecond);
BENCHMARK(FetchInOrder)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(FetchAnywhere)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(FetchAndCommit)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(InsertAndDelete)->Arg(SMALL)->Arg(LARGE);
BENCHMARK(SaveWalk)->Arg(SMALL)->Arg(LARGE)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

}  // namespace hexlane::bench
