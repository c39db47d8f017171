// Any texts as the user's settings: the program starts, and its forms, pages and prints come out or
// end in a run-time error. Never anything else. A line of the input is a setting's value.
//
// Works in a scratch folder: folders on the command line have to be absolute.

#include "headless/scripted_platform.h"
#include "notation/page_layout.h"
#include "notation/print_pass.h"
#include "shell/main_win.h"
#include "shell/page_setup.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>

using namespace quillon;

namespace {

constexpr const char* kPrefsKeys[] = {
    "FontSize", "FontName",   "TitleFont",  "TitleFontSize", "PageLeft",      "PageRight",
    "PageTop",  "StaveSpace", "NumStrings", "MIDIDEVICE",    "TitleCentered",
};
constexpr const char* kSoundKeys[] = {"Instrument", "Tempo", "Tuning"};

/// The sound settings come first: each line serves all instruments.
void Fill(MemorySettings& settings, const std::string& input)
{
    std::istringstream lines(input);
    std::string value;
    for (const char* key : kSoundKeys)
        if (std::getline(lines, value))
            for (const InstrumentMode& mode : kInstrumentModes)
                settings.Set(mode.SettingsSection, key, value);
    for (const char* key : kPrefsKeys)
        if (std::getline(lines, value))
            settings.Set(kPrefs, key, value);
}

/// Runs what may end in a run-time error.
template <typename Work> void Try(Work work)
{
    try {
        work();
    } catch (const Fault&) {
    }
}

void UseForms(MainWin& win)
{
    Try([&] {
        win.mnuPageSet();
        win.frmPgSetup->cmdPgExit();
    });
    Try([&] {
        win.mnuSetup();
        win.frmMidiSetup.cmdExit();
    });
    Try([&] {
        win.mnuOpnMidi();
        win.frmBldMidi.cmdCreate();
        win.frmBldMidi.Unload();
    });
}

void MakePages(MainWin& win, const TextMetrics& metrics)
{
    AddFullMeasures(win.tune, 12);
    win.tune[0].ChordText = "Title";
    win.tune[0].Slot(1) = "Credit";
    Try([&] { LayOutPages(win.tune, win.page, win.pages); });
    Try([&] { RunPrintPass(win.tune, win.page, metrics, kPageWidth, kPageHeight); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const TemporaryDirectory folder;
    static const FixedTextMetrics metrics;
    ScriptedPlatform platform(folder.Path());
    Fill(platform.settings, {reinterpret_cast<const char*>(data), size});
    MainWin win(platform.get(), metrics);
    if (!win.Load() || !FindMode(win.tune.NumStrings))
        std::abort();
    win.FirstActivate("");
    win.SplashClosed();
    UseForms(win);
    MakePages(win, metrics);
    return 0;
}
