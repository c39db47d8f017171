#include "exchange/musicxml_reader.h"

#include "exchange/music_text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kFourFour =
    "<attributes><divisions>2</divisions><time><beats>4</beats><beat-type>4</beat-type></time>"
    "</attributes>";

/// The only tune of a score with one part of one measure.
FoundTune Read(const std::string& measure)
{
    return ReadMusicXml("<score-partwise><part id=\"P1\"><measure number=\"1\">" + measure +
                        "</measure></part></score-partwise>")
        .at(0);
}

/// A note of so many halves of a quarter; step "" is a rest. `more` stands at its end.
std::string Note(const std::string& step, int duration, int voice = 1, const std::string& more = {})
{
    return "<note>" +
           (step.empty() ? "<rest/>"
                         : "<pitch><step>" + step + "</step><octave>4</octave></pitch>") +
           "<duration>" + std::to_string(duration) + "</duration><voice>" + std::to_string(voice) +
           "</voice>" + more + "</note>";
}

std::string Backup(int duration)
{
    return "<backup><duration>" + std::to_string(duration) + "</duration></backup>";
}

std::string OnString(int string, int fret)
{
    return "<notations><technical><string>" + std::to_string(string) + "</string><fret>" +
           std::to_string(fret) + "</fret></technical></notations>";
}

TEST(MusicXmlReaderTest, NumbersBeyondAllNumbersDoNoHarm)
{
    const auto tempo = [](const std::string& text) {
        return Read("<sound tempo=\"" + text + "\"/>" + Note("C", 8)).Tune.Tempo;
    };
    EXPECT_EQ(tempo("120.5"), 120.5);
    EXPECT_EQ(tempo("99999"), 1000);
    EXPECT_EQ(tempo("1e999"), 0);
    EXPECT_EQ(tempo("-5"), 0);
    EXPECT_EQ(tempo("nan"), 0);
    const FoundTune found = ReadMusicXml("<score-partwise><identification><miscellaneous>"
                                         "<miscellaneous-field name=\"quillon-tuning\">9e99"
                                         "</miscellaneous-field></miscellaneous></identification>"
                                         "<part id=\"P1\"><measure number=\"1\">" +
                                         Note("C", 8) + "</measure></part></score-partwise>")
                                .at(0);
    EXPECT_EQ(found.Tune.TuningRow, 50);
}

TEST(MusicXmlReaderTest, ASecondVoiceFillsTheRestsOfTheFirst)
{
    const FoundTune found = Read(kFourFour + Note("G", 2) + Note("", 6) + Backup(8) +
                                 Note("", 4, 2) + Note("C", 2, 2) + Note("", 2, 2));
    EXPECT_EQ(EventText(found.Tune), "67:12 z:12 60:12 z:12");
    EXPECT_EQ(found.Said.Lines(), Lines());
}

TEST(MusicXmlReaderTest, ASecondVoiceGoesOnWhereTheFirstEnds)
{
    EXPECT_EQ(EventText(Read(kFourFour + Note("G", 2) + Backup(2) +
                             "<forward><duration>4</duration></forward>" + Note("C", 4, 2))
                            .Tune),
              "67:12 z:12 60:24");
}

TEST(MusicXmlReaderTest, NotesOfTwoVoicesThatBeginAndEndTogetherAreAChord)
{
    const FoundTune found = Read(kFourFour + Note("G", 4) + Note("A", 4) + Backup(8) +
                                 Note("C", 4, 2) + Note("D", 4, 2));
    EXPECT_EQ(EventText(found.Tune), "67,60:24 69,62:24");
    EXPECT_EQ(found.Said.Lines(), Lines());
}

TEST(MusicXmlReaderTest, NotesOfASecondVoiceThatOverlapAreLeftOutAndCounted)
{
    const FoundTune found = Read(kFourFour + Note("G", 2) + Note("A", 2) + Note("B", 4) +
                                 Backup(8) + Note("C", 4, 2) + Note("D", 3, 2) + Note("E", 1, 2));
    EXPECT_EQ(EventText(found.Tune), "67:12 69:12 71:24");
    EXPECT_EQ(found.Said.Lines(), Lines{"3 notes of second voices are left out."});
}

TEST(MusicXmlReaderTest, TwoVoicesDoNotShareAString)
{
    const FoundTune found = Read(kFourFour + Note("G", 8, 1, OnString(1, 3)) + Backup(8) +
                                 Note("F", 8, 2, OnString(1, 1)));
    EXPECT_EQ(EventText(found.Tune), "67:48");
    EXPECT_EQ(found.Said.Lines(), Lines{"A note of a second voice is left out."});
}

TEST(MusicXmlReaderTest, AChordNameStaysAtItsBeatInARestThatIsFilled)
{
    const FoundTune found = Read(kFourFour +
                                 std::string("<harmony><root><root-step>A</root-step></root>"
                                             "<kind>minor</kind></harmony>") +
                                 Note("", 8) + Backup(4) + Note("C", 4, 2));
    EXPECT_EQ(EventText(found.Tune), "z:24 60:24");
    EXPECT_EQ(found.Tune.Measures[0].Events[0].Chord, "Am");
    EXPECT_EQ(found.Tune.Measures[0].Events[1].Chord, "");
}

TEST(MusicXmlReaderTest, OfAPianoTheFirstStaffIsRead)
{
    const FoundTune found = Read(kFourFour + Note("G", 8, 1, "<staff>1</staff>") + Backup(8) +
                                 Note("C", 8, 5, "<staff>2</staff>"));
    EXPECT_EQ(EventText(found.Tune), "67:48");
    EXPECT_EQ(found.Said.Lines(), Lines{"Only the first staff is read."});
}

TEST(MusicXmlReaderTest, AMeasureWithoutASignatureHasThatOfItsLength)
{
    const auto signature = [](const std::string& music) {
        const Music tune = Read("<attributes><divisions>2</divisions></attributes>" + music).Tune;
        return std::to_string(tune.Measures[0].Beats) + "/" +
               std::to_string(tune.Measures[0].BeatUnit);
    };
    EXPECT_EQ(signature(Note("G", 6)), "3/4");
    EXPECT_EQ(signature(Note("G", 4) + Note("A", 3)), "7/8");
    EXPECT_EQ(signature(""), "4/4");
    EXPECT_EQ(signature("<attributes><time><senza-misura/></time></attributes>" + Note("G", 4)),
              "2/4");
    EXPECT_EQ(signature(kFourFour + Note("G", 4)), "4/4") << "a pickup";
}

TEST(MusicXmlReaderTest, WordsUnderTheNotesAreLeftOutAndTold)
{
    const FoundTune found = Read(kFourFour + Note("G", 4, 1, "<lyric><text>la</text></lyric>") +
                                 Note("A", 4, 1, "<lyric><text>la</text></lyric>"));
    EXPECT_EQ(EventText(found.Tune), "67:24 69:24");
    EXPECT_EQ(found.Said.Lines(), Lines{"The words under the notes are left out."});
}

TEST(MusicXmlReaderTest, StringsWithoutATuningAreOnTheFirstInWhichTheyHaveTheirPitches)
{
    const Music guitar =
        Read(kFourFour + Note("G", 4, 1, OnString(1, 3)) + Note("D", 4, 1, OnString(2, 3))).Tune;
    EXPECT_EQ(guitar.OpenPitches, (std::vector<int>{64, 59, 55, 50, 45, 40}));
    EXPECT_EQ(guitar.Measures[0].Events[1].Notes[0].Fret, 3);
    const Music mandolin = Read(kFourFour + Note("G", 8, 1, OnString(3, 5))).Tune;
    EXPECT_EQ(mandolin.OpenPitches, (std::vector<int>{76, 69, 62, 55}));
}

TEST(MusicXmlReaderTest, StringsThatFitNoTuningGiveWayToTheirPitches)
{
    const Music music =
        Read(kFourFour + Note("G", 4, 1, OnString(1, 3)) + Note("D", 4, 1, OnString(2, 9))).Tune;
    EXPECT_TRUE(music.OpenPitches.empty());
    EXPECT_EQ(EventText(music), "67:24 62:24");
    EXPECT_EQ(music.Measures[0].Events[0].Notes[0].String, 0);
}

}  // namespace
}  // namespace quillon
