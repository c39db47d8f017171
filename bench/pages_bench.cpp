// How long a layout of the pages and a print pass take. The argument is the number of records:
// 150 is a tune of a page, 1500 a full table.

#include "notation/page_layout.h"
#include "notation/print_pass.h"

#include <benchmark/benchmark.h>

namespace quillon {
namespace {

/// Measures of four eighths and two quarters, with a chord in each and a sign here and there.
Tune MakeTune(int records)
{
    Tune tune;
    tune[0].ChordText = "Benchmark";
    for (int i = 1; i <= records; ++i) {
        const int place = (i - 1) % 7;
        NoteRecord& record = tune[i];
        record.Measure = (i - 1) / 7 + 1;
        record.NoteCode = place == 0 ? kHead : place <= 4 ? 4 : 7;
        record.Beats = record.BeatUnit = 4;
        if (place == 0) {
            if (record.Measure % 10 == 0)
                record.Slot(3) = "/rit.";
            continue;
        }
        record.Slot(place) = place == 4 ? "12^" : std::to_string(place);
        record.BeamCode = place == 2 || place == 4 ? 5 : 0;
        if (place == 1)
            record.ChordText = "Am7";
    }
    tune.LastNote = records;
    tune.LastMeas = tune[records].Measure;
    return tune;
}

void LayOut(benchmark::State& state)
{
    const Tune tune = MakeTune(static_cast<int>(state.range(0)));
    const PageSettings page;
    const FixedTextMetrics metrics;
    PageView pages(metrics);
    for (auto _ : state)
        benchmark::DoNotOptimize(LayOutPages(tune, page, pages));
    state.counters["pages"] = pages.PageMax + 1;
}
BENCHMARK(LayOut)->Arg(150)->Arg(kLastRecord)->Unit(benchmark::kMicrosecond);

void Print(benchmark::State& state)
{
    const Tune tune = MakeTune(static_cast<int>(state.range(0)));
    PageSettings page;
    const FixedTextMetrics metrics;
    std::size_t count = 0;
    for (auto _ : state) {
        const PrintedTune printed = RunPrintPass(tune, page, metrics, kPageWidth, kPageHeight);
        count = printed.Pages.size();
    }
    state.counters["pages"] = static_cast<double>(count);
}
BENCHMARK(Print)->Arg(150)->Arg(kLastRecord)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillon
