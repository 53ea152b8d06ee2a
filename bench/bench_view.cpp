// bench_view.cpp: painting the view: plain, by colour, in NC Mode.

#include "document.h"
#include "shell/child.h"
#include "view/text_view.h"

#include <benchmark/benchmark.h>

namespace hexlane::bench {

namespace {

enum PaintMode { PLAIN, COLORED, NC_COLUMNS };

void PaintView(benchmark::State& state) {
    open_document(10000);
    child[0].colors_enabled = state.range(0) == COLORED;
    child[0].nc_mode = state.range(0) == NC_COLUMNS;
    for (auto _ : state)
        paint_view();
    child[0].nc_mode = 0;
    state.SetItemsProcessed(state.iterations() * (child[0].window_rows + 1));
}

BENCHMARK(PaintView)->ArgName("plain0_colored1_nc2")->Arg(PLAIN)->Arg(COLORED)->Arg(NC_COLUMNS);

}  // namespace

}  // namespace hexlane::bench
