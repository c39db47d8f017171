#include "shell/state_line.h"

#include "store/note_codes.h"

#include <algorithm>
#include <cstdlib>

namespace quillon {

namespace {

constexpr int kFractions = kTicksPerQuarter;  // of a beat; one of six ticks has every other one

constexpr const char* kFractionTexts[kFractions] = {
    "", "1/12", "⅙", "¼", "⅓", "5/12", "½", "7/12", "⅔", "¾", "⅚", "11/12",
};

/// What a tune has left on a page: anything but a marquee.
bool HasInk(const PageSurface& page)
{
    const auto isInk = [](const Operation& drawn) { return drawn.Mode == PenMode::Plain; };
    return std::ranges::any_of(page.Surface.Picture().Operations(), isInk);
}

/// The pages count themselves: a refresh leaves ShownPage and, for a tune of one page, PageMax as
/// they were.
void TellPage(const PageView& pages, TuneState& state)
{
    for (int i = 0; i < kPageCount; ++i) {
        const PageSurface& page = pages.picPage1[static_cast<std::size_t>(i)];
        if (page.Visible)
            state.Page = i + 1;  // the last one lies on top
        if (i <= pages.PageMax && HasInk(page))
            state.Pages = i + 1;
    }
}

void TellMeasure(const MainWin& win, TuneState& state)
{
    const Tune& tune = win.tune;
    const int headIndex = win.form.MeasHead;
    if (headIndex < 1 || headIndex > tune.LastNote || !tune[headIndex].IsHead())
        return;
    const NoteRecord& head = tune[headIndex];
    int ticks = 0;
    int i = headIndex + 1;
    for (; i <= tune.LastNote && tune[i].Measure == head.Measure && !tune[i].IsHead(); ++i)
        ticks += TicksOf(tune[i].NoteCode);
    const int tooMany = ticks - head.Beats * TicksPerBeat(head.BeatUnit);
    const bool mayBeShort =
        i > tune.LastNote || head.Measure == 1 || win.form.InputMode == InputMode::Insert;
    if (mayBeShort ? tooMany <= 0 : tooMany == 0)
        return;
    state.Measure = head.Measure;
    state.TicksTooMany = tooMany;
    state.BeatUnit = head.BeatUnit;
}

}  // namespace

TuneState StateOf(const MainWin& win, bool changed)
{
    TuneState state;
    state.FileName = win.tune.FileName;
    state.Changed = changed;
    TellPage(win.pages, state);
    TellMeasure(win, state);
    return state;
}

StateLine LineOf(const TuneState& state)
{
    StateLine line;
    line.Name = state.FileName.substr(state.FileName.find_last_of('/') + 1);
    if (line.Name.empty())
        line.Name = "New tune";
    if (state.Changed)
        line.Changed = "changed";
    if (state.Changed && !state.Trouble.empty())
        line.Changed += ", not being kept (" + state.Trouble + ")";
    if (state.Pages > 0 && state.Page <= state.Pages)
        line.Page = "page " + std::to_string(state.Page) + " of " + std::to_string(state.Pages);
    if (state.TicksTooMany != 0)
        line.Measure = "measure " + std::to_string(state.Measure) + ": " +
                       BeatsInWords(std::abs(state.TicksTooMany), TicksPerBeat(state.BeatUnit)) +
                       (state.TicksTooMany > 0 ? " too long" : " too short");
    line.Sound = state.Sound;
    return line;
}

std::string BeatsInWords(int ticks, int ticksPerBeat)
{
    const int whole = ticks / ticksPerBeat;
    const std::string fraction = kFractionTexts[ticks % ticksPerBeat * kFractions / ticksPerBeat];
    std::string text = whole > 0 || fraction.empty() ? std::to_string(whole) : "";
    if (!text.empty() && fraction.size() > 3)  // no sign of its own
        text += ' ';
    return text + fraction + (ticks > ticksPerBeat ? " beats" : " beat");
}

}  // namespace quillon
