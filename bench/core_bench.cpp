// How long the core takes for what the editor does at every key, and for a full table.

#include "notation/measure_view.h"
#include "store/tune_file.h"

#include <benchmark/benchmark.h>

namespace quillon {
namespace {

/// A measure of `count` sixteenths on two strings, record 1 its head.
Tune OneMeasure(int count)
{
    Tune tune;
    for (int i = 1; i <= count + 1; ++i) {
        NoteRecord& record = tune[i];
        record.Measure = 1;
        record.NoteCode = i == 1 ? kHead : 2;
        record.Beats = record.BeatUnit = 4;
        if (i > 1) {
            record.Slot(1 + i % 6) = "12";
            record.Slot(1 + (i + 3) % 6) = "7^";
        }
    }
    tune.LastNote = count + 1;
    tune.LastMeas = 1;
    return tune;
}

/// 1500 records in measures of eight, each note with a chord.
Tune FullTable()
{
    Tune tune;
    for (int i = 1; i <= kLastRecord; ++i) {
        NoteRecord& record = tune[i];
        const bool head = i % 8 == 1;
        record.Measure = (i - 1) / 8 + 1;
        record.NoteCode = head ? kHead : 4;
        record.Beats = record.BeatUnit = 4;
        if (!head) {
            record.ChordText = "Am7";
            record.Slot(1 + i % 6) = "12";
        }
    }
    tune.LastNote = kLastRecord;
    tune.LastMeas = tune[kLastRecord].Measure;
    return tune;
}

void RedrawMeasureOf16Notes(benchmark::State& state)
{
    Tune tune = OneMeasure(16);
    tune.CurMeas = 1;
    tune.CurNote = 2;
    EditingState editing;
    editing.MeasHead = 1;
    editing.MeasEnd = 17;
    const PageSettings page;
    const FixedTextMetrics metrics;
    MeasureView view(tune, editing, page, metrics);
    for (auto _ : state) {
        view.RedrawMeasure();
        benchmark::DoNotOptimize(view.StaffBox.Picture().Revision());
    }
}
BENCHMARK(RedrawMeasureOf16Notes);

void WriteFullTable(benchmark::State& state)
{
    const Tune tune = FullTable();
    for (auto _ : state)
        benchmark::DoNotOptimize(TuneBytes(tune));
}
BENCHMARK(WriteFullTable);

void ReadFullTable(benchmark::State& state)
{
    const std::string bytes = TuneBytes(FullTable());
    Tune tune;
    for (auto _ : state) {
        ItemReader reader(bytes);
        ReadTune(reader, tune);
        benchmark::DoNotOptimize(tune.LastNote);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(ReadFullTable);

void ClearTable(benchmark::State& state)
{
    const Tune full = FullTable();
    for (auto _ : state) {
        state.PauseTiming();
        NoteTable table = full.Table;
        state.ResumeTiming();
        table.Clear();
        benchmark::DoNotOptimize(table);
    }
}
BENCHMARK(ClearTable);

}  // namespace
}  // namespace quillon
