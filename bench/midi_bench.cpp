// How long the MIDI file of a tune takes: to build it, and to write it to the disk. The argument
// is the number of records: 150 is a tune of a page, 1500 a full table.

#include "midi/performance.h"

#include <benchmark/benchmark.h>

#include <filesystem>

namespace quillon {
namespace {

/// Measures of four eighths and two quarters, chords now and then; every eight measures repeat.
Tune MakeTune(int records)
{
    Tune tune;
    for (int i = 1; i <= records; ++i) {
        const int place = (i - 1) % 7;
        NoteRecord& record = tune[i];
        record.Measure = (i - 1) / 7 + 1;
        record.NoteCode = place == 0 ? kHead : place <= 4 ? 4 : 7;
        record.Beats = record.BeatUnit = 4;
        if (place == 0) {
            if (record.Measure % 8 == 1)
                record.BarCode = "98";
            else if (record.Measure % 8 == 0)
                record.BarCode = "99";
            continue;
        }
        record.Slot(place) = place == 4 ? "5-7" : std::to_string(place);
        record.Slot(place % 3 + 4) = place == 2 ? "3^" : "0";
    }
    tune.LastNote = records;
    tune.LastMeas = tune[records].Measure;
    return tune;
}

Sound MakeSound()
{
    return {
        120, 25, {64, 59, 55, 50, 45, 40}
    };
}

void Build(benchmark::State& state)
{
    Tune tune = MakeTune(static_cast<int>(state.range(0)));
    const Sound sound = MakeSound();
    MidiFileWriter writer;
    for (auto _ : state)
        BuildMidiFile(tune, sound, writer);
    state.counters["bytes"] = static_cast<double>(writer.Bytes().size());
}
BENCHMARK(Build)->Arg(150)->Arg(kLastRecord)->Unit(benchmark::kMicrosecond);

void BuildAndWrite(benchmark::State& state)
{
    Tune tune = MakeTune(static_cast<int>(state.range(0)));
    const Sound sound = MakeSound();
    MidiFileWriter writer;
    writer.FileName = (std::filesystem::temp_directory_path() / "quillon-bench.mid").string();
    for (auto _ : state) {
        BuildMidiFile(tune, sound, writer);
        writer.CloseFile();
    }
    std::filesystem::remove(writer.FileName);
}
BENCHMARK(BuildAndWrite)->Arg(150)->Arg(kLastRecord)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillon
