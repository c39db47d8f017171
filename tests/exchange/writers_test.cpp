#include "exchange/abc_writer.h"
#include "exchange/forms.h"
#include "exchange/lilypond_writer.h"
#include "exchange/musicxml_reader.h"
#include "exchange/musicxml_writer.h"
#include "exchange/text_tab_writer.h"

#include "music_text.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillon {
namespace {

Music MusicFrom(Tune& tune)
{
    Notices notices;
    ExportChoices choices;
    choices.Tunings = DefaultTunings(tune.NumStrings);
    return MusicOf(tune, choices, notices);
}

void FillSmallTune(Tune& tune)
{
    tune[0].ChordText = "Small";
    NoteRecord& head = AddMeasure(tune, 3, 4);
    AddNote(tune, kQuarter, 1, "2").ChordText = "D";
    AddNote(tune, kEighth, 2, "3-5");
    AddNote(tune, kEighth, 1, "12").Slot(6) = "0";
    head.BarCode = kRepeatEnd;
    AddMeasure(tune, 3, 4);
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kTripletEighth, 3, "1");
    AddNote(tune, kHalfRest);
}

TEST(WritersTest, AbcHasLengthsInSixteenthsAndExplicitAccidentals)
{
    Tune tune;
    FillSmallTune(tune);
    Notices notices;
    EXPECT_EQ(WriteAbc(MusicFrom(tune), notices), "X:1\n"
                                                  "T:Small\n"
                                                  "M:3/4\n"
                                                  "L:1/16\n"
                                                  "K:C\n"
                                                  "\"D\"^F4 DE[eE,,]2:|(3^G,2^G,2^G,2z8|\n");
    EXPECT_EQ(notices.Lines().size(), 2U);
}

/// Measures of a whole note each, with these bar signs.
std::string AbcOf(const std::vector<std::string_view>& barCodes,
                  const std::vector<std::string>& brackets = {}, const std::string& remark = {})
{
    Tune tune;
    for (std::size_t i = 0; i < barCodes.size(); ++i) {
        NoteRecord& head = AddMeasure(tune);
        head.BarCode = barCodes[i];
        head.Slot(2) = i < brackets.size() ? brackets[i] : "";
        AddNote(tune, kWhole, 1, std::to_string(i));
    }
    tune[1].Slot(3) = remark;
    Notices notices;
    const std::string text = WriteAbc(MusicFrom(tune), notices);
    return text.substr(text.find("K:C\n") + 4);
}

TEST(WritersTest, AbcRepeatsAreThoseThatItsReadersPlay)
{
    EXPECT_EQ(AbcOf({kRepeatStart, "", kRepeatStart, kRepeatEnd}), "E16|F16|:^F16|G16:|\n");
    EXPECT_EQ(AbcOf({kRepeatStart, kRepeatEnd, kRepeatStart, kRepeatEnd}),
              "|:E16|F16::^F16|G16:|\n");
    EXPECT_EQ(AbcOf({"", kRepeatEnd, kDoubleBar, kRepeatEnd, ""}, {"", "1", "2", "", "3"}),
              "E16|[1 F16:|[2 ^F16|G16:|\n[3 ^G16|\n");
}

TEST(WritersTest, AnAbcTextHasNoPercentSign)
{
    EXPECT_EQ(AbcOf({""}, {}, "50 % \\ slower"), "\"^50 \\u0025 \\\\ slower\"E16|\n");
}

TEST(WritersTest, TextTablatureStandsInColumns)
{
    Tune tune;
    FillSmallTune(tune);
    Notices notices;
    EXPECT_EQ(WriteTextTab(MusicFrom(tune), notices), "Small\n"
                                                      "Tuning: E A D G B E\n"
                                                      "Time: 3/4\n"
                                                      "\n"
                                                      "   D\n"
                                                      "   q    s s e     e3 e3 e3 h\n"
                                                      "e|-2--------12-:|-------------------|\n"
                                                      "B|------3h5----:|-------------------|\n"
                                                      "G|-------------:|-1--1--1-----------|\n"
                                                      "D|-------------:|-------------------|\n"
                                                      "A|-------------:|-------------------|\n"
                                                      "E|----------0--:|-------------------|\n"
                                                      "\n");
}

TEST(WritersTest, LilyPondHasTheTuneAsWrittenAndAsItSounds)
{
    Tune tune;
    FillSmallTune(tune);
    Notices notices;
    const std::string text = WriteLilyPond(MusicFrom(tune), notices);
    for (const char* part :
         {"title = \"Small\"", "page-breaking-system-system-spacing.padding",
          "\\override TupletNumber.avoid-slur = #'ignore",
          "tuning = \\stringTuning <e, a, d g b e'>", "<fis'\\1>4^\\markup \\bold \"D\"",
          "<d'\\2>16( <e'\\2>16) <e''\\1 e,\\6>8", "\\set Score.repeatCommands = #'(end-repeat)",
          "\\tuplet 3/2 { <gis\\3>8 <gis\\3>8 <gis\\3>8 } r2 |"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
    // Two measures as written, three as they sound.
    EXPECT_EQ(std::ranges::count(text, '|') - 1, 5);
}

TEST(WritersTest, MusicXmlHasAMeasureAndOctavesThatItsReadersKnow)
{
    Notices ignored;
    EXPECT_NE(WriteMusicXml({}, ignored).find("<measure"), std::string::npos);
    Music music;
    MusicNote note;
    note.Pitch = 64 + 99;
    note.String = 1;
    note.Fret = 99;
    MusicEvent& event = music.Measures.emplace_back().Events.emplace_back();
    event.Length = 4 * kQuarterUnits;
    event.Notes = {note};
    music.OpenPitches = {64, 59, 55, 50, 45, 40};
    const std::string text = WriteMusicXml(music, ignored);
    EXPECT_NE(text.find("<octave>9</octave>"), std::string::npos);
    EXPECT_EQ(ReadMusicXml(text).at(0).Tune.Measures[0].Events[0].Notes[0].Fret, 99);
}

TEST(WritersTest, MusicXmlIsRefusedWithTheLine)
{
    try {
        ReadMusicXml("<score-partwise>\n<part>\n</score-partwise>");
        FAIL();
    } catch (const ExchangeError& error) {
        EXPECT_EQ(std::string(error.what()).substr(0, 7), "Line 3:");
    }
    EXPECT_THROW(ReadMusicXml("<html/>"), ExchangeError);
    EXPECT_THROW(ReadMusicXml("<score-partwise/>"), ExchangeError);
    EXPECT_THROW(ReadMusicXml(std::string(100000, '<')), ExchangeError);
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";
    EXPECT_THROW(ReadMusicXml(deep), ExchangeError);
}

}  // namespace
}  // namespace quillon
