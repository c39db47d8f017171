#include "shell/import.h"

#include "exchange/forms.h"
#include "exchange/table_music.h"
#include "midi/sound_settings.h"
#include "shell/chosen_tuning.h"
#include "shell/menus.h"
#include "store/tune_file.h"

#include <filesystem>
#include <fstream>

namespace quillon {

namespace {

constexpr const char* kUnknownForm =
    "Its extension is not one of a form that can be read. Give it the one that belongs to it, such "
    "as .abc, .musicxml, .mid or .txt.";
constexpr const char* kUnreadable = "It cannot be read. Check that it is there and that you may "
                                    "read it.";

int StringsFor(const MainWin& win, const Music& music)
{
    const int own = static_cast<int>(music.OpenPitches.size());
    return FindMode(own) ? own : int{win.tune.NumStrings};
}

}  // namespace

bool IsForeign(const std::string& path)
{
    constexpr std::size_t kFirstLine = 100;
    std::error_code ignored;
    if (!FormOfFile(path) || !std::filesystem::is_regular_file(path, ignored))
        return false;
    std::ifstream file(path, std::ios::binary);
    std::string start(kFirstLine, '\0');
    file.read(start.data(), kFirstLine);
    start.resize(static_cast<std::size_t>(file.gcount()));
    return file.is_open() && !IsTuneFile(start);
}

std::vector<FoundTune> TunesIn(const std::string& path)
{
    const ExchangeForm* form = FormOfFile(path);
    if (!form)
        throw ExchangeError(kUnknownForm);
    std::string bytes;
    try {
        bytes = ReadFileBytes(path);
    } catch (const Fault& fault) {
        throw ExchangeError(fault.Number() == Error::Overflow ? kTooLargeToRead : kUnreadable);
    }
    return ReadForm(*form, bytes);
}

// A tune keeps no tuning of its own until it is told: until then it has the one chosen last.
std::unique_ptr<Tune> MakeImported(const MainWin& win, FoundTune found, Notices& said)
{
    if (!found.Failure.empty())
        throw ExchangeError(found.Failure);
    said = std::move(found.Said);
    const InstrumentMode& mode = *FindMode(StringsFor(win, found.Tune));
    ImportChoices choices;
    choices.Tunings = TuningList(win, mode);
    const int chosen = ChosenTuning(win, mode, static_cast<int>(choices.Tunings.size()));
    if (chosen != 0 && found.Tune.OpenPitches.empty())
        choices.Tuning = chosen;
    auto made = std::make_unique<Tune>();
    made->NumStrings = mode.NumStrings;
    MakeTune(std::move(found.Tune), choices, *made, said);
    if (chosen != 0 && (*made)[0].Slot(4).empty())
        KeepTuning(*made, 0);
    return made;
}

bool TakeImported(MainWin& win, const Tune& made, Notices& said)
{
    if (!win.MayLeaveTune())
        return false;
    if (made.NumStrings == win.tune.NumStrings)
        win.mnuNew();
    else
        FindMenuEntry(FindMode(made.NumStrings)->Command)->Run(win);
    if (!win.FillNewTune(TuneBytes(made)))
        said.Say(
            "It has more than nine pages: it can be printed, but the window cannot show them.");
    return true;
}

}  // namespace quillon
