// Any bytes as a tune file: a loaded tune, every measure of which can be shown and which is laid
// out, printed and written back, or the box and a run-time error. Never anything else.

#include "headless/scripted_platform.h"
#include "notation/page_layout.h"
#include "notation/print_pass.h"
#include "shell/main_win.h"
#include "store/tune_file.h"

#include <cstdint>
#include <cstdlib>

using namespace quillon;

namespace {

/// Runs what may end in a run-time error.
template <typename Work> void Try(Work work)
{
    try {
        work();
    } catch (const Fault&) {
    }
}

void ShowEveryMeasure(MainWin& win)
{
    const int lastMeas = win.tune.LastMeas;
    for (int measure = 1; measure <= lastMeas && measure <= kLastRecord; ++measure)
        win.editor.ShowMeasure(measure);
}

/// What was loaded, written and loaded again is the same tune.
void CheckRoundTrip(const Tune& tune)
{
    const std::string bytes = TuneBytes(tune);
    ItemReader reader(bytes);
    static Tune again;
    again.Table.Clear();
    ReadTune(reader, again);
    if (TuneBytes(again) != bytes)
        std::abort();
}

bool HasQuote(const Tune& tune)
{
    for (int i = 0; i <= tune.LastNote; ++i) {
        const NoteRecord& r = tune[i];
        if (r.LeftHand == '"' || r.RightHand == '"')
            return true;
        for (const std::string* text : {&r.BarCode, &r.ChordText})
            if (text->find('"') != std::string::npos)
                return true;
        for (const std::string& slot : r.Slots)
            if (slot.find('"') != std::string::npos)
                return true;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FixedTextMetrics metrics;
    static ScriptedPlatform platform("");
    static MainWin win(platform.get(), metrics);
    win.tune.LastNote = win.tune.LastMeas = 0;
    win.form = {};
    win.form.MeasHead = 1;
    win.form.Focus = Control::StaffBox;
    win.page = {};
    platform.dialogs.Shown.clear();
    try {
        win.ShowTune(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const Fault& fault) {
        if (fault.Number() == Error::ObjectRequired && platform.dialogs.Shown.size() != 1)
            std::abort();
        return 0;
    }
    if (!HasQuote(win.tune))
        CheckRoundTrip(win.tune);
    Try([&] { ShowEveryMeasure(win); });
    Try([&] { LayOutPages(win.tune, win.page, win.pages); });
    Try([&] { RunPrintPass(win.tune, win.page, metrics, kPageWidth, kPageHeight); });
    return 0;
}
