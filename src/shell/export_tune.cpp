#include "shell/export_tune.h"

#include "exchange/forms.h"
#include "exchange/table_music.h"
#include "midi/midi_file_writer.h"
#include "midi/performance.h"
#include "notation/page_layout.h"
#include "notation/print_pass.h"
#include "shell/chosen_tuning.h"
#include "shell/look_choice.h"

#include <memory>

namespace quillon {

namespace {

constexpr double kPngDpi = 300;

/// Making a file of a tune may change it, and a table is too large for the stack.
std::unique_ptr<Tune> CopyOf(const MainWin& win)
{
    return std::make_unique<Tune>(win.tune);
}

void RefuseTooWide(std::optional<int> measure)
{
    if (measure)
        throw CannotExport("Measure " + std::to_string(*measure) + " is too wide for a line.");
}

std::string MidiFile(const MainWin& win)
{
    MidiFileWriter writer;
    BuildMidiFile(*CopyOf(win), win.frmBldMidi.SoundNow(), writer);
    return writer.Bytes();
}

PageChoices ChoicesFor(const MainWin& win, const PageChoices& paper)
{
    PageChoices choices = paper;
    choices.As = ChosenLook(win.platform.settings);
    choices.Dpi = kPngDpi;
    choices.Title = win.tune[0].ChordText;
    choices.Author = win.tune[0].Slot(1);
    choices.Subject = win.tune[0].Slot(2);
    return choices;
}

std::string Pdf(const MainWin& win, const PageChoices& choices, const Renderer& renderer)
{
    PageSettings page = win.page;
    const PrintedTune printed =
        RunPrintPass(win.tune, page, renderer.Metrics(), choices.Width, choices.Height);
    RefuseTooWide(printed.TooWideMeasure);
    return renderer.Pdf(printed.Pages, choices);
}

/// Each page as it would be on the screen.
std::vector<std::string> Pictures(const MainWin& win, const std::string& extension,
                                  PageChoices choices, const Renderer& renderer)
{
    choices.Width = kPageWidth;
    choices.Height = kPageHeight;
    PageView pages(renderer.Metrics());
    RefuseTooWide(LayOutPages(win.tune, win.page, pages));
    std::vector<std::string> files;
    for (int i = 0; i <= pages.PageMax; ++i) {
        const Drawing& drawing = pages.Page(i).Surface.Picture();
        files.push_back(extension == "svg" ? renderer.Svg(drawing, choices)
                                           : renderer.Png(drawing, choices));
    }
    return files;
}

std::string Foreign(const MainWin& win, const ExchangeForm& form, Notices& said)
{
    const InstrumentMode& mode = *FindMode(win.tune.NumStrings);
    ExportChoices choices;
    choices.Tunings = TuningList(win, mode);
    const int row = ChosenTuning(win, mode, static_cast<int>(choices.Tunings.size()));
    if (row != 0 && win.tune[0].Slot(4).empty())
        choices.Tuning = row;
    if (win.frmBldMidi.Loaded)
        choices.Capo = win.frmBldMidi.controls.Capo;
    choices.Tempo = win.frmBldMidi.SoundNow().Tempo;
    choices.Reader = form.Reader;
    return form.Write(MusicOf(*CopyOf(win), choices, said), said);
}

}  // namespace

std::vector<ExportForm> ExportForms()
{
    std::vector<ExportForm> forms = {
        {"pdf", "PDF"},
        {"svg", "SVG"},
        {"png", "PNG"},
        {"mid", "MIDI"},
        {"wav", "WAV", true},
        {"ogg", "Ogg", true},
        {"mp3", "MP3", true}
    };
    for (const ExchangeForm& form : ExchangeForms())
        if (form.Write)
            forms.push_back({std::string(form.Name), std::string(form.About)});
    return forms;
}

std::vector<std::string> ExportedFiles(const MainWin& win, const ExportForm& form,
                                       const PageChoices& paper, const Renderer& renderer,
                                       Notices& said)
{
    if (const ExchangeForm* foreign = FindForm(form.Extension); foreign && foreign->Write)
        return {Foreign(win, *foreign, said)};
    if (form.IsSound || form.Extension == "mid")
        return {MidiFile(win)};
    if (form.Extension == "pdf")
        return {Pdf(win, ChoicesFor(win, paper), renderer)};
    return Pictures(win, form.Extension, ChoicesFor(win, paper), renderer);
}

}  // namespace quillon
