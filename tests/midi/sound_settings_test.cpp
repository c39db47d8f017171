#include "midi/sound_settings.h"

#include "midi/performance.h"

#include "midi/midi_text.h"
#include "support/faults.h"
#include "support/tunes.h"

namespace quillon {
namespace {

Tune OneNote(int numStrings)
{
    Tune tune;
    tune.NumStrings = numStrings;
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "0");
    return tune;
}

MidiText Export(Tune& tune, const SoundChoices& choices = {})
{
    return ReadMidi(MidiFileBytes(tune, DefaultTunings(tune.NumStrings), choices));
}

TEST(Sound, HasTheNamesOf106InstrumentsUpToTheBanjo)
{
    const auto names = InstrumentNames();
    ASSERT_EQ(names.size(), 106u);
    EXPECT_STREQ(names[0], "Acoustic Grand Piano");
    EXPECT_STREQ(names[3], "Honkytonk Piano");
    EXPECT_STREQ(names[25], "Acoustic Guitar (steel)");
    EXPECT_STREQ(names[31], "Guitar Harmonics");
    EXPECT_STREQ(names[40], "Violin");
    EXPECT_STREQ(names[52], "Choir Aahs");
    EXPECT_STREQ(names[63], "Synth Brass 2");
    EXPECT_STREQ(names[77], "Shaku");
    EXPECT_STREQ(names[80], "Lead 1 (square)");
    EXPECT_STREQ(names[99], "FX 4 (atmo - sphere)");
    EXPECT_STREQ(names[105], "Banjo");
}

TEST(Sound, HoldsTempoAndCapoToTheRangesOfTheirSliders)
{
    EXPECT_EQ(HeldTempo(0), 30);
    EXPECT_EQ(HeldTempo(120.5), 120);
    EXPECT_EQ(HeldTempo(1e300), 300);
    EXPECT_EQ(HeldCapo(-1), 0);
    EXPECT_EQ(HeldCapo(13), 12);
}

TEST(Sound, ATuningThatIsNotThereGivesWayToTheFirst)
{
    EXPECT_EQ(TuningRow("2", 4), 2);
    EXPECT_EQ(TuningRow(" 3 x", 4), 3);
    for (const char* wanted : {"", "x", "4", "9", "-1", "99999999999", "3.6"})
        EXPECT_EQ(TuningRow(wanted, 4), 0) << wanted;
}

TEST(Sound, DefaultsOfEachInstrument)
{
    for (const auto& [numStrings, program, tempo, pitch] :
         {std::tuple(6, "25", 130, "64"), std::tuple(5, "105", 210, "62"),
          std::tuple(4, "25", 130, "76")}) {
        Tune tune = OneNote(numStrings);
        const MidiText file = Export(tune);
        EXPECT_EQ(file.Division, tempo);
        EXPECT_EQ(file.Tracks.size(), static_cast<std::size_t>(numStrings + 1));
        EXPECT_EQ(file.Tracks[1][0], std::string("0 193 ") + program);
        EXPECT_EQ(file.Tracks[1][1], std::string("0 145 ") + pitch + " 100");
        EXPECT_EQ(tune[0].Slot(4), "0");
    }
}

TEST(Sound, TheTunesOwnTuningIsTakenUnlessAnotherIsChosen)
{
    Tune tune = OneNote(6);
    tune[0].Slot(4) = "2";
    EXPECT_EQ(Export(tune).Tracks[1][1], "0 145 62 100");
    SoundChoices choices;
    choices.Tuning = 1;
    choices.Capo = 2;
    choices.Tempo = 1000;
    choices.Instrument = 24;
    const MidiText file = Export(tune, choices);
    EXPECT_EQ(file.Tracks[1][0], "0 193 24");
    EXPECT_EQ(file.Tracks[1][1], "0 145 66 100");
    EXPECT_EQ(file.Division, 300);
    EXPECT_EQ(tune[0].Slot(4), "1");
}

TEST(Sound, TheTuningIsKeptBeforeTheHeaderIsPlayed)
{
    Tune tune = OneNote(6);
    tune[0].NoteCode = 20;  // so the texts of the header are notes
    EXPECT_EQ(Export(tune).Tracks[4][1], "0 148 50 100");
}

TEST(Sound, WithoutTuningsThereIsNoneToSelect)
{
    Tune tune = OneNote(6);
    EXPECT_FAULT(MidiFileBytes(tune, {}, {}), InvalidPropertyValue);
}

TEST(Sound, APitchWithItsCapoStaysWithin16Bits)
{
    TuningRecord tuning;
    tuning.Pitch(3) = 32767;
    EXPECT_FAULT(OpenPitches(tuning, 1), Overflow);
}

TEST(Sound, ATuningIsTheRowThatItsNumberRoundsTo)
{
    for (const auto& [wanted, row] : {std::pair("0", 0), std::pair("0.4", 0), std::pair("0.6", 1),
                                      std::pair("3.4", 3), std::pair("-0.1", 0)})
        EXPECT_EQ(TuningRow(wanted, 4), row) << wanted;
}

}  // namespace
}  // namespace quillon
