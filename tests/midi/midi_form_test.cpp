#include "midi/midi_form.h"

#include "midi/midi_text.h"
#include "store/sign_codes.h"
#include "support/fakes.h"
#include "support/faults.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

#include <algorithm>

namespace quillon {
namespace {

using Texts = std::vector<std::string>;

/// The form over a tune of one open-string note, on a fake platform.
class MidiFormTest : public testing::Test {
protected:
    MidiFormTest()
    {
        system.Folder = folder.Path();
        tune.FileName = folder.Path("reel.gui");
        AddMeasure(tune);
        AddNote(tune, kQuarter, 1, "0");
        tune.CurNote = 2;
    }

    TemporaryDirectory folder;
    FakeDialogs dialogs;
    FakeSettings settings;
    FakeSystem system;
    FakePrinter printer;
    FakeClipboard clipboard;
    FakePlayer player;
    FakeMidiPorts midiPorts;
    Platform platform{dialogs, settings, system, printer, clipboard, player, midiPorts};
    Tune tune;
    Tunings tunings;
    MidiForm form{tune, tunings, platform};
    MidiControls& controls = form.controls;

    std::string PlayFile() const { return folder.Path() + "/Playfile.mid"; }
    std::string MidiFile() const { return folder.Path("reel.Mid"); }
    MidiText Built() const { return ReadMidi(ReadFileBytes(controls.txtFile)); }
    bool Exists(const std::string& path) const { return std::filesystem::exists(path); }

    /// The tune of one measure is beyond what can be played.
    void SpoilTune() { tune[2].Slot(1) = "40000"; }

    std::string Buttons() const
    {
        std::string text;
        const auto add = [&](const char* name, bool enabled) {
            if (enabled)
                text += text.empty() ? name : std::string(" ") + name;
        };
        add("create", controls.cmdCreateEnabled);
        add("clear", controls.cmdClearEnabled);
        add("play", controls.cmdPlayEnabled);
        add("stop", controls.cmdStopEnabled);
        add("loop", controls.chkLoopEnabled);
        return text;
    }
};

// Opening and closing

TEST_F(MidiFormTest, OpensWithTheDefaultsOfTheInstrument)
{
    for (const auto& [numStrings, program, tempo] :
         {std::tuple(6, 25, 130), std::tuple(5, 105, 210), std::tuple(4, 25, 130)}) {
        tune.NumStrings = numStrings;
        form.Show();
        EXPECT_EQ(controls.Combo2Index, program);
        EXPECT_EQ(controls.HSlider1, tempo);
        EXPECT_EQ(controls.Text1, std::to_string(tempo));
        EXPECT_EQ(controls.Capo, 0);
        EXPECT_EQ(controls.lblCapo, "0");
        EXPECT_EQ(controls.FType, kPlayFile);
        EXPECT_EQ(controls.cmdCreateCaption, "Create Play File");
        EXPECT_EQ(controls.txtFile, "");
        EXPECT_EQ(controls.sldTempo, 10);
        EXPECT_EQ(controls.sldVolume, 200);
        EXPECT_EQ(Buttons(), "create play loop");
        form.Unload();
        settings = {};
        tune[0].Slot(4) = "";
    }
}

TEST_F(MidiFormTest, OpensWithTheSettingsOfTheInstrument)
{
    settings.Values[{"Guitar", "Instrument"}] = "40";
    settings.Values[{"Guitar", "Tempo"}] = "500";
    form.Show();
    EXPECT_EQ(controls.Combo2Index, 40);
    EXPECT_EQ(controls.Text1, "300");
}

TEST_F(MidiFormTest, AnInstrumentThatIsNotOnTheListCannotBeSelected)
{
    settings.Values[{"Guitar", "Instrument"}] = "106";
    EXPECT_FAULT(form.Show(), InvalidPropertyValue);
}

TEST_F(MidiFormTest, OnlyMinusOneSelectsNoInstrument)
{
    settings.Values[{"Guitar", "Instrument"}] = "-2";
    EXPECT_FAULT(form.Show(), InvalidPropertyValue);
}

TEST_F(MidiFormTest, MinusOneSelectsNoInstrument)
{
    settings.Values[{"Guitar", "Instrument"}] = "-1";
    form.Show();
    EXPECT_EQ(controls.Combo2Index, -1);
}

TEST_F(MidiFormTest, OpensWithoutAskingForTheFocus)
{
    form.Show();
    form.cmdCreate();
    EXPECT_EQ(form.Focus, MidiForm::Button::cmdPlay);
    form.Unload();
    form.Show();
    EXPECT_EQ(form.Focus, MidiForm::Button::None);
}

TEST_F(MidiFormTest, MovesNeitherTempoNorVolumeOfThePlayerWhenItOpens)
{
    form.Show();
    EXPECT_EQ(player.Calls, Texts{"Init"});
}

TEST_F(MidiFormTest, ShowingTheOpenFormChangesNothing)
{
    form.Show();
    form.CapoChange(3);
    form.Show();
    EXPECT_EQ(controls.Capo, 3);
    EXPECT_EQ(player.Calls, Texts{"Init"});
}

TEST_F(MidiFormTest, ClosingPutsCurNoteBackAndKeepsInstrumentAndTempo)
{
    form.Show();
    form.Combo2Click(73);
    form.HSlider1Change(90);
    form.cmdCreate();
    EXPECT_NE(tune.CurNote, 2);
    settings.Written.clear();
    form.cmdExit();
    EXPECT_FALSE(form.Loaded);
    EXPECT_EQ(tune.CurNote, 2);
    EXPECT_EQ(settings.Written, (Texts{"Guitar/Instrument=73", "Guitar/Tempo=90"}));
    EXPECT_EQ(player.Calls.back(), "Close");
}

TEST_F(MidiFormTest, OfFiveStringsInstrumentAndTempoAreKeptToo)
{
    tune.NumStrings = 5;
    form.Show();
    settings.Written.clear();
    form.Unload();
    EXPECT_EQ(settings.Written, (Texts{"Banjo/Instrument=105", "Banjo/Tempo=210"}));
}

TEST_F(MidiFormTest, OfFourStringsOnlyTheTuningIsKept)
{
    tune.NumStrings = 4;
    form.Show();
    form.Combo2Click(73);
    form.Unload();
    EXPECT_EQ(settings.Written, Texts{"Bass/Tuning=0"});
}

TEST_F(MidiFormTest, TheNextOpeningStartsAfresh)
{
    form.Show();
    form.CapoChange(5);
    form.FTypeClick(kMidiFile);
    form.cmdCreate();
    form.Unload();
    form.Show();
    EXPECT_EQ(controls.Capo, 0);
    EXPECT_EQ(controls.txtFile, "");
    EXPECT_EQ(controls.cmdCreateCaption, "Create Play File");
    EXPECT_EQ(Buttons(), "create play loop");
}

// Tuning, capo, tempo

TEST_F(MidiFormTest, AStoredTuningServesATuneThatHasNone)
{
    settings.Values[{"Guitar", "Tuning"}] = "2";
    form.Show();
    EXPECT_EQ(controls.Combo1, (Texts{"Standard", "Dropped D", "Open D", "G Tuning"}));
    EXPECT_EQ(controls.Combo1Index, 2);
    EXPECT_EQ(tune[0].Slot(4), "2");
}

TEST_F(MidiFormTest, ATuningThatIsNotThereGivesWayToTheFirst)
{
    for (const char* kept : {"9", "4", "-1", "x"}) {
        tune[0].Slot(4) = kept;
        form.Show();
        EXPECT_EQ(controls.Combo1Index, 0);
        EXPECT_EQ(tune[0].Slot(4), "0");
        form.Unload();
    }
}

TEST_F(MidiFormTest, TheTunesOwnTuningComesBeforeTheStoredOne)
{
    settings.Values[{"Guitar", "Tuning"}] = "2";
    tune[0].Slot(4) = "1";
    form.Show();
    EXPECT_EQ(controls.Combo1Index, 1);
}

TEST_F(MidiFormTest, ATuningFileOfOneRowSelectsItAndOneOfNoneIsAnError)
{
    WriteFileBytes("Strings6.tun", "\"Mine\",1,2,3,4,5,6\r\n");
    form.Show();
    EXPECT_EQ(controls.Combo1Index, 0);
    form.Unload();
    WriteFileBytes("Strings6.tun", "");
    EXPECT_FAULT(form.Show(), InvalidPropertyValue);
}

TEST_F(MidiFormTest, WhileItIsClosedTheSoundIsThatWithWhichItWouldOpen)
{
    settings.Values[{"Guitar", "Tuning"}] = "2";
    settings.Values[{"Guitar", "Instrument"}] = "40";
    settings.Values[{"Guitar", "Tempo"}] = "99";
    const auto expectOpenD = [&] {
        const Sound sound = form.SoundNow();
        EXPECT_EQ(sound.Tempo, 99);
        EXPECT_EQ(form.TempoNow(), 99);
        EXPECT_EQ(sound.Instrument, 40);
        EXPECT_EQ(sound.OpenPitch, (std::array<Int16, 6>{62, 57, 54, 50, 45, 38}));
    };
    expectOpenD();
    EXPECT_EQ(tune[0].Slot(4), "") << "asking keeps nothing";
    form.Show();
    expectOpenD();
    form.CapoChange(2);
    EXPECT_EQ(form.SoundNow().OpenPitch, (std::array<Int16, 6>{64, 59, 56, 52, 47, 40}));
}

TEST_F(MidiFormTest, SelectingATuningKeepsItWithTheTuneAndInTheSettings)
{
    form.Show();
    settings.Written.clear();
    form.Combo1Click(3);
    EXPECT_EQ(tune[0].Slot(4), "3");
    EXPECT_EQ(settings.Written, Texts{"Guitar/Tuning=3"});
}

TEST_F(MidiFormTest, ACapoOf2MakesTheOpenFirstStringSoundAt66)
{
    form.Show();
    form.CapoChange(2);
    EXPECT_EQ(controls.lblCapo, "2");
    form.cmdCreate();
    EXPECT_EQ(Built().Tracks[1][1], "0 145 66 100");
}

TEST_F(MidiFormTest, TheCapoStaysWhenAnotherTuningIsSelected)
{
    form.Show();
    form.CapoChange(2);
    form.Combo1Click(2);
    form.cmdCreate();
    EXPECT_EQ(Built().Tracks[1][1], "0 145 64 100");
}

TEST_F(MidiFormTest, TheTempoAsTextAndTheSliderAreKeptEqual)
{
    form.Show();
    form.HSlider1Change(99);
    EXPECT_EQ(controls.Text1, "99");
    form.Text1Change("150");
    EXPECT_EQ(controls.HSlider1, 150);
    EXPECT_EQ(controls.Text1, "150");
}

TEST_F(MidiFormTest, ATextWithoutANumberIs0WhichTheSliderHoldsTo30)
{
    form.Show();
    form.Text1Change("fast");
    EXPECT_EQ(controls.HSlider1, 30);
    EXPECT_EQ(controls.Text1, "30");
    form.Text1Change("1e12");
    EXPECT_EQ(controls.HSlider1, 300);
}

TEST_F(MidiFormTest, AMissingTuningFileIsReplacedSilently)
{
    form.Show();
    EXPECT_TRUE(Exists("Strings6.tun"));
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(MidiFormTest, ATuningFileOf52RowsIsASubscriptFault)
{
    std::string rows;
    for (int i = 0; i < 52; ++i)
        rows += "\"T\",1,2,3,4,5,6\r\n";
    WriteFileBytes("Strings6.tun", rows);
    EXPECT_FAULT(form.Show(), SubscriptOutOfRange);
}

// Building

TEST_F(MidiFormTest, BuildsThePlayFileAndHandsItToThePlayer)
{
    form.Show();
    form.HSlider1Change(120);
    form.cmdCreate();
    EXPECT_EQ(controls.txtFile, PlayFile());
    EXPECT_EQ(player.Loaded, PlayFile());
    EXPECT_EQ(Built().Division, 120);
    EXPECT_EQ(Built().Tracks[1], (Texts{"0 193 25", "0 145 64 100", "120 145 64 0", "0 end"}));
    EXPECT_EQ(Buttons(), "clear play loop");
    EXPECT_EQ(form.Focus, MidiForm::Button::cmdPlay);
    EXPECT_FALSE(system.WaitCursor);
}

TEST_F(MidiFormTest, TheKindOfFileNamesTheButton)
{
    form.Show();
    form.FTypeClick(kMidiFile);
    EXPECT_EQ(controls.cmdCreateCaption, "Create MIDI File");
    EXPECT_EQ(controls.txtFile, "");
    form.FTypeClick(kPlayFile);
    EXPECT_EQ(controls.cmdCreateCaption, "Create Play File");
}

TEST_F(MidiFormTest, TheMidiFileStandsBesideTheTune)
{
    form.Show();
    form.FTypeClick(kMidiFile);
    form.cmdCreate();
    EXPECT_EQ(controls.txtFile, MidiFile());
    EXPECT_TRUE(Exists(MidiFile()));
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(MidiFormTest, ATuneWithoutAFileNameBuildsThePlayFileOnly)
{
    tune.FileName = "";
    form.Show();
    form.FTypeClick(kMidiFile);
    form.cmdCreate();
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Text,
              "Run-time error 5: invalid procedure call\r\nThe tune has no file name.");
    EXPECT_FALSE(system.WaitCursor);
    form.FTypeClick(kPlayFile);
    form.cmdCreate();
    EXPECT_EQ(player.Loaded, PlayFile());
}

TEST_F(MidiFormTest, TheMidiFilesNameIsTheTunesWithOtherLastThreeCharacters)
{
    form.Show();
    form.FTypeClick(kMidiFile);
    tune.FileName = "gu";
    form.cmdCreate();
    EXPECT_EQ(dialogs.Shown.size(), 1u);
    tune.FileName = "gui";
    form.cmdCreate();
    EXPECT_EQ(controls.txtFile, "Mid");
    EXPECT_EQ(dialogs.Shown.size(), 1u);
}

TEST_F(MidiFormTest, APlayFileIsReplacedSilently)
{
    WriteFileBytes(PlayFile(), "old");
    form.Show();
    form.cmdCreate();
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_EQ(Built().Tracks.size(), 7u);
}

TEST_F(MidiFormTest, ASecondPlayFileReplacesTheFirstSilently)
{
    form.Show();
    form.cmdCreate();
    const std::string first = ReadFileBytes(PlayFile());
    form.cmdClear();
    form.HSlider1Change(222);
    form.cmdCreate();
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_EQ(Built().Division, 222);
    EXPECT_NE(ReadFileBytes(PlayFile()), first);
    EXPECT_EQ(player.Loaded, PlayFile());
    EXPECT_EQ(Buttons(), "clear play loop");
}

TEST_F(MidiFormTest, AMidiFileIsReplacedOnlyOnYesEvenIfTheSystemWroteIt)
{
    form.Show();
    form.FTypeClick(kMidiFile);
    form.cmdCreate();
    form.cmdClear();
    form.HSlider1Change(222);
    dialogs.YesNo.push_back(true);
    form.cmdCreate();
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Question);
    EXPECT_EQ(dialogs.Shown[0].Text, MidiFile() + " already exists, do you want to recreate it?");
    EXPECT_EQ(Built().Division, 222);
}

TEST_F(MidiFormTest, AnsweringNoChangesNothing)
{
    WriteFileBytes(MidiFile(), "old");
    form.Show();
    form.FTypeClick(kMidiFile);
    form.cmdCreate();
    EXPECT_EQ(ReadFileBytes(MidiFile()), "old");
    EXPECT_EQ(controls.txtFile, "");
    EXPECT_EQ(Buttons(), "create play loop");
    EXPECT_EQ(player.Calls, Texts{"Init"});
    EXPECT_EQ(tune.CurNote, 2);
}

TEST_F(MidiFormTest, AFailedBuildIsReportedAndLeavesNoFileAndTheHourglass)
{
    WriteFileBytes(PlayFile(), "old");
    SpoilTune();
    form.Show();
    form.cmdCreate();
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Stop);
    EXPECT_EQ(dialogs.Shown[0].Title, "Run-time error");
    EXPECT_EQ(dialogs.Shown[0].Text, "Run-time error 6: overflow\r\nMeasure 1 cannot be played.");
    EXPECT_FALSE(Exists(PlayFile()));
    EXPECT_TRUE(system.WaitCursor);
    EXPECT_TRUE(form.Loaded);
    EXPECT_EQ(system.Ends, 0);
    EXPECT_EQ(Buttons(), "create play loop");
    form.Unload();
    EXPECT_FALSE(system.WaitCursor);
}

TEST_F(MidiFormTest, ABuildThatSucceedsTakesTheHourglassOfAFailedOneAway)
{
    SpoilTune();
    form.Show();
    form.cmdCreate();
    tune[2].Slot(1) = "4";
    form.cmdCreate();
    EXPECT_FALSE(system.WaitCursor);
}

TEST_F(MidiFormTest, AMissingCodaIsReportedInTheTunesOwnWords)
{
    AddMeasure(tune).Slot(3) = "/To Coda";
    AddNote(tune, kQuarter, 1, "0");
    AddMeasure(tune).Slot(1) = kDcAlCoda;
    AddNote(tune, kQuarter, 1, "0");
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "0");
    form.Show();
    form.cmdCreate();
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Text,
              "Run-time error 9: subscript out of range\r\nNo Coda follows measure 3.");
    EXPECT_EQ(tune.CurNote, kLastRecord + 1) << "where the search ran off the table";
    form.Unload();
    EXPECT_EQ(tune.CurNote, 2);
}

TEST_F(MidiFormTest, RepeatsWithoutAnEndAreReported)
{
    tune[1].Slot(1) = kDcAlFine;
    form.Show();
    form.cmdCreate();
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Title, "Run-time error");
    EXPECT_EQ(dialogs.Shown[0].Text, "The repeats and signs of this tune never come to an end.");
}

TEST_F(MidiFormTest, AFileThatCannotBeWrittenIsReported)
{
    tune.FileName = folder.Path("missing/reel.gui");
    form.Show();
    form.FTypeClick(kMidiFile);
    form.cmdCreate();
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Text,
              "Run-time error 75: path/file access error\r\nThe MIDI file cannot be written.");
}

TEST_F(MidiFormTest, ClearStopsAndStartsThePlayerAgain)
{
    form.Show();
    form.cmdCreate();
    form.cmdPlay();
    player.Calls.clear();
    form.cmdClear();
    EXPECT_EQ(player.Calls, (Texts{"Stop", "Close", "Init"}));
    EXPECT_EQ(Buttons(), "create play loop");
    EXPECT_TRUE(Exists(PlayFile()));
}

// Playing

TEST_F(MidiFormTest, PlayBeforeAnyBuildDoesNothing)
{
    form.Show();
    form.cmdPlay();
    EXPECT_EQ(player.Calls, Texts{"Init"});
    EXPECT_EQ(Buttons(), "create play loop");
    EXPECT_EQ(form.Focus, MidiForm::Button::None);
}

TEST_F(MidiFormTest, PlayAndStopTurnTheButtons)
{
    form.Show();
    form.cmdCreate();
    form.cmdPlay();
    EXPECT_EQ(player.Calls.back(), "Play");
    EXPECT_EQ(Buttons(), "clear stop");
    EXPECT_EQ(form.Focus, MidiForm::Button::cmdStop);
    form.cmdStop();
    EXPECT_EQ(player.Calls.back(), "Stop");
    EXPECT_EQ(Buttons(), "clear play loop");
    EXPECT_EQ(form.Focus, MidiForm::Button::cmdPlay);
}

TEST_F(MidiFormTest, TheFileIsShownBeforeItIsBuilt)
{
    form.Show();
    tune[2].Slot(1) = "40000";  // cannot be played
    std::string shown;
    form.OnChange = [&] {
        EXPECT_TRUE(dialogs.Shown.empty());
        shown = controls.txtFile;
    };
    form.cmdCreate();
    EXPECT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(shown, PlayFile());
}

TEST_F(MidiFormTest, ATuneThatHasPlayedToItsEndSetsTheButtonsBack)
{
    form.Show();
    form.cmdCreate();
    form.cmdPlay();
    int changes = 0;
    form.OnChange = [&] { ++changes; };
    player.OnEnd();
    EXPECT_EQ(Buttons(), "clear play loop");
    EXPECT_EQ(changes, 1);
}

TEST_F(MidiFormTest, WithLoopAudioTheTunePlaysForEver)
{
    form.Show();
    form.cmdCreate();
    form.chkLoopClick(true);
    form.cmdPlay();
    EXPECT_EQ(player.Calls.back(), "Play for ever");
    EXPECT_EQ(Buttons(), "clear stop");
}

TEST_F(MidiFormTest, ANotificationThatCannotBeProcessedIsShown)
{
    form.Show();
    form.cmdCreate();
    form.cmdPlay();
    int changes = 0;
    form.OnChange = [&] { ++changes; };
    player.OnFailure();
    EXPECT_EQ(changes, 1);
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Information);
    EXPECT_EQ(dialogs.Shown[0].Title, "Cannot Process.");
    EXPECT_EQ(dialogs.Shown[0].Text, "Error processing this Notification");
    EXPECT_EQ(Buttons(), "clear stop");
}

TEST_F(MidiFormTest, AClosedFormHearsNothingOfThePlayer)
{
    form.Show();
    form.Unload();
    EXPECT_FALSE(player.OnEnd);
    EXPECT_FALSE(player.OnFailure);
}

TEST_F(MidiFormTest, TheSlidersReachThePlayerAtOnce)
{
    form.Show();
    form.sldTempoChange(0);
    form.sldTempoChange(30);
    EXPECT_EQ(controls.sldTempo, 30);
    form.sldVolumeChange(-2500);
    EXPECT_EQ(controls.sldVolume, -2500);
    EXPECT_EQ(player.Calls, (Texts{"Init", "SetTempoFactor 0.000000", "SetTempoFactor 3.000000",
                                   "SetVolume -2500"}));
}

TEST_F(MidiFormTest, WithoutWorkingSoundTheProgramEnds)
{
    player.Works = false;
    form.Show();
    ASSERT_EQ(dialogs.Shown.size(), 1u);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Information);
    EXPECT_EQ(dialogs.Shown[0].Title, "Exiting...");
    EXPECT_EQ(dialogs.Shown[0].Text, "Could not initialize DirectMusic.\r\nThis sample will exit.");
    EXPECT_FALSE(form.Loaded);
    EXPECT_EQ(player.Calls, (Texts{"Init", "Close", "Close"}));
    EXPECT_EQ(system.Ends, 1);
}

TEST_F(MidiFormTest, SoundThatIsGoneAtClearEndsTheProgramToo)
{
    form.Show();
    form.cmdCreate();
    player.Works = false;
    form.cmdClear();
    EXPECT_FALSE(form.Loaded);
    EXPECT_EQ(system.Ends, 1);
    EXPECT_EQ(tune.CurNote, 2);
}

}  // namespace
}  // namespace quillon
