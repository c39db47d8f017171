#include "headless/export.h"

#include "midi/performance.h"
#include "notation/page_layout.h"
#include "notation/print_pass.h"
#include "store/sign_codes.h"
#include "store/tune_file.h"

#include <cstdio>

namespace quillon {

namespace {

/// A box's text on one line: each run of line ends becomes a blank, unless one precedes it.
std::string OneLine(const std::string& text)
{
    std::string line;
    for (char c : text) {
        const bool lineEnd = c == '\r' || c == '\n';
        if (!lineEnd)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    return line;
}

int StringsOf(const std::string& path)
{
    const std::size_t dot = path.find_last_of('.');
    const InstrumentMode* mode =
        dot == std::string::npos ? nullptr : FindModeOfExtension(path.substr(dot + 1));
    return mode ? mode->NumStrings : 6;
}

void RefuseTooWide(std::optional<int> measure)
{
    if (measure)
        throw ExportError("Measure " + std::to_string(*measure) + " is too wide for a line.");
}

/// All rows of a tuning file, which stays as it is: unlike the program's own, it is never rebuilt.
std::vector<TuningRecord> RowsOf(const std::string& path, int numStrings)
{
    try {
        ItemReader reader(ReadFileBytes(path));
        Tunings tunings;
        const int count = ReadTunings(reader, numStrings, tunings);
        tunings.List.resize(static_cast<std::size_t>(count));
        return tunings.List;
    } catch (const Fault& fault) {
        throw ExportError(path + ": " + fault.what());
    }
}

SoundChoices SoundOf(const ExportOptions& options)
{
    SoundChoices choices;
    if (options.Tempo)
        choices.Tempo = HeldTempo(*options.Tempo);
    choices.Tuning = options.Tuning;
    choices.Instrument = options.Instrument;
    choices.Capo = options.Capo.value_or(0);
    return choices;
}

}  // namespace

std::vector<TuningRecord> TuningsOf(const ExportOptions& options, int numStrings)
{
    return options.TuningFile.empty() ? DefaultTunings(numStrings)
                                      : RowsOf(options.TuningFile, numStrings);
}

ExportedTune::ExportedTune(const std::string& path, const ExportOptions& options,
                           const TextMetrics& textMetrics, FontCheck hasFont)
    : metrics(textMetrics), platform("", std::move(hasFont)), win(platform.get(), textMetrics)
{
    Prepare(options.Strings.value_or(StringsOf(path)));
    win.tune.FileName = path;
    bool loaded = false;
    try {
        loaded = win.LoadTune();
    } catch (const Fault&) {
        if (platform.dialogs.Shown.empty())
            throw;
    }
    if (!loaded)
        throw ExportError(OneLine(platform.dialogs.Shown.back().Text));
    ApplyOptions(options);
}

ExportedTune::ExportedTune(const std::string& bytes, int strings, const ExportOptions& options,
                           const TextMetrics& textMetrics, FontCheck hasFont)
    : metrics(textMetrics), platform("", std::move(hasFont)), win(platform.get(), textMetrics)
{
    Prepare(strings);
    win.ShowTune(bytes);
    const int lastMeas = win.tune.LastMeas;
    for (int measure = 1; measure <= lastMeas; ++measure)
        win.editor.ShowMeasure(measure);
    ApplyOptions(options);
}

void ExportedTune::Prepare(int strings)
{
    win.tune.NumStrings = strings;
    win.form.Saved = SavedState::Saved;
    win.form.Focus = Control::StaffBox;  // so that loading shows the first measure just once
    win.form.MeasHead = 1;
    win.form.MeasCapacity = 48;
}

void ExportedTune::ApplyOptions(const ExportOptions& options)
{
    PageSettings& page = win.page;
    page.BodyFontName = options.BodyFont.value_or(page.BodyFontName);
    page.BodyFontSize = options.BodySize.value_or(page.BodyFontSize);
    page.TitleFontName = options.TitleFont.value_or(page.TitleFontName);
    page.TitleFontSize = options.TitleSize.value_or(page.TitleFontSize);
    page.PageLeft = options.Left.value_or(page.PageLeft);
    page.PageRight = options.Right.value_or(page.PageRight);
    page.PageTop = options.Top.value_or(page.PageTop);
    page.StaveSpace = options.StaveSpace.value_or(page.StaveSpace);
    page.TitleCentered = options.CenterTitle.value_or(page.TitleCentered);
}

std::string ExportedTune::TuneFile() const
{
    return TuneBytes(win.tune);
}

std::string ExportedTune::MeasureLog()
{
    std::string log;
    const int lastMeas = win.tune.LastMeas;
    for (int measure = 1; measure <= lastMeas; ++measure) {
        win.editor.ShowMeasure(measure);
        const MainForm& form = win.form;
        char line[200];
        std::snprintf(line, sizeof line,
                      "measure %d head=%d end=%d beats=%d unit=%d capacity=%d fill=%d endbar=%d\n",
                      measure, int{form.MeasHead}, int{form.MeasEnd}, int{form.CurBeats},
                      int{form.CurBeatUnit}, int{form.MeasCapacity}, int{form.MeasFill},
                      int{win.view.EndBarX});
        log += line;
        for (int i = form.MeasHead + 1; i <= form.MeasEnd; ++i) {
            const NoteRecord& note = win.tune[i];
            std::snprintf(line, sizeof line, "note %d code=%d spacing=%d xpos=%d beam=%d\n", i,
                          int{note.NoteCode}, int{note.Spacing}, int{note.XPos},
                          int{note.BeamCode});
            log += line;
        }
        log += win.view.StaffBox.Picture().Log();
    }
    return log;
}

void ExportedTune::Keep(const MeasureRange& measures)
{
    Tune& tune = win.tune;
    for (const int measure : {measures.First, measures.Last})
        if (measure < 1 || measure > tune.LastMeas)
            throw ExportError("There is no measure " + std::to_string(measure) + ".");
    int kept = 0;
    for (int i = 1; i <= tune.LastNote; ++i)
        if (tune[i].Measure >= measures.First && tune[i].Measure <= measures.Last)
            tune[++kept] = tune[i];
    for (int i = kept + 1; i <= tune.LastNote; ++i)
        tune[i].Clear();
    for (int i = 1; i <= kept; ++i)
        if (tune[i].Slot(6) == kLineBreak)
            tune[i].Slot(6).clear();  // of the whole page
    tune.LastNote = kept;
    tune[0].ChordText = " ";
    tune[0].Slot(1).clear();
    tune[0].Slot(2).clear();
}

int ExportedTune::LayOut()
{
    RefuseTooWide(LayOutPages(win.tune, win.page, win.pages));
    return win.pages.PageMax + 1;
}

std::string ExportedTune::PageLog()
{
    const int count = LayOut();
    std::string log;
    for (int i = 0; i < count; ++i)
        log += "page " + std::to_string(i + 1) + "\n" + win.pages.Page(i).Surface.Picture().Log();
    return log;
}

std::vector<Drawing> ExportedTune::Print(double paperWidth, double paperHeight)
{
    PrintedTune printed = RunPrintPass(win.tune, win.page, metrics, paperWidth, paperHeight);
    RefuseTooWide(printed.TooWideMeasure);
    return std::move(printed.Pages);
}

std::string ExportedTune::PrintLog()
{
    std::string log;
    int number = 0;
    for (const Drawing& page : Print())
        log += "page " + std::to_string(++number) + "\n" + page.Log();
    return log + "end\n";
}

std::string ExportedTune::MidiFile(const ExportOptions& options)
{
    return MidiFileBytes(win.tune, TuningsOf(options, win.tune.NumStrings), SoundOf(options));
}

std::string ExportedTune::PracticeFile(const ExportOptions& options,
                                       const std::optional<MeasureRange>& measures,
                                       const PracticeChoices& choices)
{
    const Sound sound =
        ChosenSound(win.tune, TuningsOf(options, win.tune.NumStrings), SoundOf(options));
    const PlayPositions positions = PositionsOf(win.tune, sound);
    const PlayedPart part =
        measures ? PartOf(positions, measures->First, measures->Last) : AllOf(positions);
    return MakePractice(win.tune, sound, part, choices).Midi;
}

std::vector<Finding> ExportedTune::Check(const ExportOptions& options)
{
    const int tempo = HeldTempo(options.Tempo.value_or(FindMode(win.tune.NumStrings)->Tempo));
    return CheckTune(win.tune, win.page, win.pages, metrics, tempo);
}

std::string ExportedTune::Order()
{
    std::string line;
    for (int measure : MeasureOrder(win.tune))
        line += (line.empty() ? "" : " ") + std::to_string(measure);
    return line;
}

}  // namespace quillon
