#include "shell/export_tune.h"

#include "midi/midi_file_writer.h"
#include "midi/performance.h"
#include "shell/look_choice.h"
#include "support/desk.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillon {
namespace {

/// Says what it was asked for.
class FakeRenderer : public Renderer {
public:
    const TextMetrics& Metrics() const override { return metrics; }
    bool HasFont(const std::string&) const override { return true; }
    std::string Pdf(const std::vector<Drawing>& pages, const PageChoices& choices) const override
    {
        return "pdf " + std::to_string(pages.size()) + Words(choices);
    }
    std::string Svg(const Drawing& page, const PageChoices& choices) const override
    {
        return (page.Operations().empty() ? "empty svg" : "svg") + Words(choices);
    }
    std::string Png(const Drawing&, const PageChoices& choices) const override
    {
        return "png" + Words(choices);
    }
    void Sound(const std::string&, const std::string&, const std::string&,
               const std::function<void(double)>&) const override
    {
    }

private:
    static std::string Words(const PageChoices& choices)
    {
        return ' ' + std::to_string(static_cast<int>(choices.Width)) + 'x' +
               std::to_string(static_cast<int>(choices.Height)) +
               (choices.As == Look::Engraved ? " engraved " : " plain ") +
               std::to_string(static_cast<int>(choices.Dpi)) + ' ' + choices.Title + '/' +
               choices.Author + '/' + choices.Subject;
    }

    FixedTextMetrics metrics;
};

class ExportTuneTest : public Desk {
protected:
    ExportTuneTest()
    {
        Start();
        AddFullMeasures(win.tune, 3);
        win.tune[0].ChordText = "Tune";
        win.tune[0].Slot(1) = "Trad.";
        win.tune[0].Slot(2) = "arr.";
    }

    std::vector<std::string> Files(const std::string& extension)
    {
        const auto forms = ExportForms();
        const auto form = std::ranges::find(forms, extension, &ExportForm::Extension);
        PageChoices paper;
        paper.Width = 11906;
        paper.Height = 16838;
        return ExportedFiles(win, *form, paper, renderer, said);
    }

    FakeRenderer renderer;
    Notices said;
};

TEST_F(ExportTuneTest, WhatTheExportCommandWritesIsOffered)
{
    std::string extensions;
    for (const ExportForm& form : ExportForms())
        extensions += form.Extension + ' ';
    EXPECT_EQ(extensions, "pdf svg png mid wav ogg mp3 abc musicxml mxl ly txt ");
}

TEST_F(ExportTuneTest, PagesHaveTheLookChosenAndPdfsTheLocalesPaper)
{
    EXPECT_EQ(Files("pdf"),
              std::vector<std::string>{"pdf 1 11906x16838 plain 300 Tune/Trad./arr."});
    ChooseLook(settings, Look::Engraved);
    EXPECT_EQ(Files("svg"),
              std::vector<std::string>{"svg 12240x15840 engraved 300 Tune/Trad./arr."});
    AddFullMeasures(win.tune, 60);
    EXPECT_GT(Files("png").size(), 1U);
}

TEST_F(ExportTuneTest, SoundIsWhatTheMidiFormWouldMake)
{
    settings.Set("Guitar", "Tempo", "200");
    settings.Set("Guitar", "Tuning", "2");
    MidiFileWriter writer;
    BuildMidiFile(win.tune, win.frmBldMidi.SoundNow(), writer);
    EXPECT_EQ(Files("mid"), std::vector<std::string>{writer.Bytes()});
    EXPECT_EQ(Files("mp3"), Files("mid"));
}

TEST_F(ExportTuneTest, OtherProgramsAreToldTheTuningAndTheTempoThatSoundNow)
{
    settings.Set("Guitar", "Tempo", "200");
    const std::string standard = Files("abc").at(0);
    EXPECT_NE(standard.find("Q:1/4=200\n"), std::string::npos) << standard;
    const auto stringsInD = [&] {
        const std::string score = Files("musicxml").at(0);
        int count = 0;
        for (std::size_t at = 0; (at = score.find("<tuning-step>D", at)) != std::string::npos; ++at)
            ++count;
        return count;
    };
    EXPECT_EQ(stringsInD(), 1);
    settings.Set("Guitar", "Tuning", "1");  // Dropped D
    EXPECT_EQ(stringsInD(), 2);
    settings.Set("Guitar", "Tuning", "2");  // Open D
    EXPECT_EQ(stringsInD(), 3);
    win.tune[0].Slot(4) = "0";
    EXPECT_EQ(stringsInD(), 1) << "the tune has a tuning of its own";
    EXPECT_EQ(Files("abc").at(0), standard);
}

TEST_F(ExportTuneTest, TheCapoIsThatOfTheMidiFormWhileItIsOpen)
{
    EXPECT_EQ(Files("musicxml").at(0).find("<capo>"), std::string::npos);
    win.mnuOpnMidi();
    win.frmBldMidi.controls.Capo = 2;
    EXPECT_NE(Files("musicxml").at(0).find("<capo>2</capo>"), std::string::npos);
}

TEST_F(ExportTuneTest, NothingChangesInTheWindow)
{
    const std::string before = State() + Table();
    const float size = win.page.BodyFontSize = 11;
    for (const ExportForm& form : ExportForms())
        EXPECT_NE(Files(form.Extension).at(0), "");
    EXPECT_EQ(State() + Table(), before);
    EXPECT_EQ(win.page.BodyFontSize, size);
    EXPECT_TRUE(win.pages.Page(0).Surface.Picture().Operations().empty());
}

TEST_F(ExportTuneTest, AMeasureThatFitsNoLineIsSaid)
{
    AddMeasure(win.tune);
    for (int i = 0; i < 90; ++i)
        AddNote(win.tune, kQuarter, 2, "3").Spacing = 20;
    for (const char* form : {"pdf", "svg"})
        try {
            Files(form);
            FAIL() << form;
        } catch (const CannotExport& error) {
            EXPECT_STREQ(error.what(), "Measure 4 is too wide for a line.");
        }
}

}  // namespace
}  // namespace quillon
