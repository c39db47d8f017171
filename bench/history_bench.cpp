// What history and journal add to each key, and how much room they take.

#include "headless/scenario.h"

#include "shell/run_keeper.h"
#include "store/tune_file.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <thread>

namespace quillon {
namespace {

/// The editor with a tune of `records` records open and a journal, in a folder of its own.
class Desk {
public:
    explicit Desk(int records)
    {
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder);
        scenario.emplace(folder.string(), output);
        keeper.emplace(Window(), Past(), folder.string());
        if (records == 0)
            return;
        Tune tune;
        for (int i = 1; i <= records; ++i) {
            NoteRecord& record = tune[i];
            record.Measure = (i - 1) / 9 + 1;
            record.NoteCode = i % 9 == 1 ? kHead : 4;
            record.Beats = record.BeatUnit = 4;
            if (i % 9 != 1)
                record.Slot(1 + i % 6) = "12";
        }
        tune.LastNote = records;
        WriteFileBytes("bench.gui", TuneBytes(tune));
        Play("dialog bench.gui");
        Play("menu mnuOpen");
    }

    ~Desk()
    {
        keeper.reset();
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
    }

    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    void Play(const std::string& line) { scenario->Play(line); }
    History& Past() { return *scenario->Steps(); }
    MainWin& Window() { return scenario->Window(); }

    std::size_t JournalSize() const
    {
        std::error_code gone;
        return std::filesystem::file_size(keeper->JournalPath(), gone);
    }

    /// Ten times the tune's file, or what any tune's journal may take.
    double LongestAllowed()
    {
        return std::max(10.0 * static_cast<double>(TuneBytes(Window().tune).size()), 128'000.0);
    }

private:
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "quillon-history-bench";
    std::ostringstream output;
    std::optional<Scenario> scenario;
    std::optional<RunKeeper> keeper;
};

void LookWhereNothingChanged(benchmark::State& state)
{
    Desk desk(static_cast<int>(state.range(0)));
    for (auto _ : state)
        desk.Past().Observe(Input::Key, {});
}
BENCHMARK(LookWhereNothingChanged)->Arg(0)->Arg(300)->Arg(1500);

/// The handler of a fret key with history behind it.
void TypeAFret(benchmark::State& state)
{
    Desk desk(static_cast<int>(state.range(0)));
    MainWin& win = desk.Window();
    for (auto _ : state) {
        win.form.CursorX = win.tune[win.tune.CurNote].XPos;
        desk.Past().Begin();
        win.editor.StaffBoxKeyDown(0);
        win.editor.StaffBoxKeyPress('7');
        desk.Past().Observe(Input::Key, {});
        if (state.iterations() % 64 == 0)
            desk.Play("key Enter");
    }
}
BENCHMARK(TypeAFret)->Arg(300)->Arg(1500);

/// Notes of two keys, eight to a measure, and at the table's end a new tune. Pauses let the thread
/// that shortens the journal keep up with keys that no person types as fast.
void HundredThousandKeys(benchmark::State& state)
{
    for (auto _ : state) {
        Desk desk(0);
        std::size_t longest = 0;
        double fullest = 0;
        desk.Play("toolbar 4");
        for (int keys = 0; keys < 100'000; keys += 2) {
            if (desk.Window().tune.LastNote > kLastRecord - 20) {
                desk.Play("menu mnuNew");
                desk.Play("toolbar 4");
            }
            desk.Play(desk.Window().form.Focus == Control::cmdNext ? "key Enter" : "type 5");
            desk.Play("key Enter");
            if (keys % 1000 == 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
                longest = std::max(longest, desk.JournalSize());
                fullest = std::max(fullest,
                                   static_cast<double>(desk.JournalSize()) / desk.LongestAllowed());
            }
        }
        state.counters["journal"] = static_cast<double>(longest);
        state.counters["fullest"] = fullest;
        state.counters["bytes"] = static_cast<double>(desk.Past().Steps().Size());
        state.counters["steps"] = desk.Past().UndoCount();
    }
}
BENCHMARK(HundredThousandKeys)->Unit(benchmark::kMillisecond);

void UndoAndRedo(benchmark::State& state)
{
    Desk desk(static_cast<int>(state.range(0)));
    desk.Play("key F6");
    for (auto _ : state) {
        desk.Past().Undo();
        desk.Past().Redo();
    }
}
BENCHMARK(UndoAndRedo)->Arg(300)->Arg(1500);

}  // namespace
}  // namespace quillon
