#include "exchange/abc_reader.h"

#include "music_text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

std::string Events(const std::string& music, const std::string& head = "M:4/4\nL:1/4\n")
{
    return EventText(AbcTune(music, head).Tune);
}

TEST(AbcReaderTest, NotesHaveTheirOctaveAndTheirLength)
{
    EXPECT_EQ(Events("C, C c c' B3/2 A/ G/4 F2"), "48:12 60:12 72:12 84:12 71:18 69:6 67:3 65:24");
    EXPECT_EQ(Events("A// A3/ z x2"), "69:3 69:18 z:12 z:24");
}

TEST(AbcReaderTest, WithoutAUnitTheMeterSaysIt)
{
    EXPECT_EQ(Events("C", "M:2/4\n"), "60:3");
    EXPECT_EQ(Events("C", "M:6/8\n"), "60:6");
    EXPECT_EQ(Events("C", ""), "60:6");
}

TEST(AbcReaderTest, AnAccidentalHoldsInEveryOctaveToTheBar)
{
    EXPECT_EQ(Events("^F f F, =F|F"), "66:12 78:12 54:12 65:12 | 65:12");
    EXPECT_EQ(Events("[K:D]F [K:Gm]B ^^c __E"), "66:12 70:12 74:12 62:12");
}

TEST(AbcReaderTest, KeysAreReadInEveryMode)
{
    const std::pair<const char*, const char*> keys[] = {
        {"Amin",        "60:12 65:12 71:12"},
        {"E minor",     "60:12 66:12 71:12"},
        {"Ador",        "60:12 66:12 71:12"},
        {"Bb",          "60:12 65:12 70:12"},
        {"F#m",         "61:12 66:12 71:12"},
        {"HP",          "61:12 66:12 71:12"},
        {"none",        "60:12 65:12 71:12"},
        {"D exp _b",    "60:12 65:12 70:12"},
        {"G=f^c",       "61:12 65:12 71:12"},
        {"G clef=alto", "60:12 66:12 71:12"},
    };
    for (const auto& [key, events] : keys)
        EXPECT_EQ(Events("[K:" + std::string(key) + "]C F B"), events) << key;
}

TEST(AbcReaderTest, ATieIsOneSoundAndKeepsItsAccidental)
{
    EXPECT_EQ(Events("C-C C -C|^F-|F F"), "60-:12 60:12 60-:12 60:12 | 66-:12 | 66:12 65:12");
    EXPECT_EQ(Events("C-D [C-E]C [CE]-[CE]"), "60:12 62:12 60-,64:12 60:12 60-,64-:12 60,64:12");
    EXPECT_EQ(Events("C-{d}C"), "60:12 60:12");
}

TEST(AbcReaderTest, BrokenRhythmAndTuplets)
{
    EXPECT_EQ(Events("A>B A<B A>>B A > z"), "69:18 71:6 69:6 71:18 69:21 71:3 69:18 z:6");
    EXPECT_EQ(Events("A2>B"), "69:24 71:12");
    EXPECT_EQ(Events("(3CDE (3C2D2E2 (2CD (3:2:2CD (3 CDE C"),
              "60:8 62:8 64:8 60:16 62:16 64:16 60:18 62:18 60:8 62:8 60:8 62:8 64:8 60:12");
    EXPECT_EQ(Events("(5CDEFG", "M:6/8\nL:1/8\n"), "60:3.6 62:3.6 64:3.6 65:3.6 67:3.6");
}

TEST(AbcReaderTest, AChordIsAsLongAsItsFirstNote)
{
    EXPECT_EQ(Events("[CEG]2 [C2E]"), "60,64,67:24 60,64:24");
}

/// A letter stands for a bar; what is played is on the right.
TEST(AbcReaderTest, RepeatsAreReadAsTuneBooksMeanThem)
{
    const std::pair<const char*, const char*> tunes[] = {
        {"C|D:|E|F:|G|",               "CDCDEFEFG"},
        {"C|:D:|E||F:|G|",             "CDDEFFG"  },
        {"C||D|E:|F|",                 "CDECDEF"  },
        {"|:C|D||E|F:|",               "CDEFCDEF" },
        {"|:C::D:|",                   "CCDD"     },
        {"|::C::|",                    "CC"       },
        {"|:C|[1D:|[2E|]F|",           "CDCEF"    },
        {"|:C|1D:|2E||F|",             "CDCEF"    },
        {"|:C|[1,2D:|[3E|]",           "CDCDCE"   },
        {"|:C|[1-3D:|[4E|]",           "CDCDCDCE" },
        {"|:C|[1D:|[2E:|F|",           "CDCEF"    },
        {"|:C|[1D:|[2E||F|G:|",        "CDCEFGFG" },
        {"|:C|[1D:|[2E||F|[1G:|[2A|]", "CDCEFGFA" },
        {"|:C|D|E|",                   "CDE"      },
        {"|:C2 D2|E2:|:F2|G4:|",       "CECEFGFG" },
        {"|:C|D|:E|F:|G|",             "CDCDEFEFG"},
        {"|:C|[1D:|[2E|:F|:G|",        "CDCEFFG"  },
    };
    for (const auto& [music, played] : tunes) {
        const FoundTune found = AbcTune(music);
        EXPECT_EQ(PlayedLetters(found.Tune), played) << music;
        const MadeTune made(found.Tune);
        EXPECT_EQ(made.notices.Lines().size(), 0U) << music << made.Said();
    }
}

TEST(AbcReaderTest, PartsArePlayedInTheHeadersOrder)
{
    const std::string head = "P:A2(BA)C\nM:4/4\nL:1/4\n";
    EXPECT_EQ(PlayedLetters(AbcTune("P:A\nC|D:|\nP:B\nE|", head).Tune), "CDCDCDCDECDCD");
    EXPECT_EQ(PlayedLetters(AbcTune("P:A\nC|D:|\nP:B\nE|").Tune), "CDCDE");
    EXPECT_EQ(PlayedLetters(AbcTune("P:A\nC|D|\nP:B\nE|F:|", "P:BABA\n").Tune), "EFEFCDEFEFCD");
}

TEST(AbcReaderTest, TextsAndChordNamesAreKept)
{
    const Music music = ReadAbc("X:1\nT:Th\xE9 \"Tune\"\nT:second\nC:One\nC:Two\nC:Three\n"
                                "Q:1/8=180\nK:G\n\"G\"A \"^slowly\"\"D/f+\"B !4!c \"Am\"|d\n")
                            .at(0)
                            .Tune;
    EXPECT_EQ(music.Title, "Th\xE9 'Tune'");
    EXPECT_EQ(music.Credits[0] + music.Credits[1], "OneTwo");
    EXPECT_EQ(music.Tempo, 90);
    const MusicMeasure& measure = music.Measures.at(0);
    EXPECT_EQ(measure.Events[0].Chord, "G");
    EXPECT_EQ(measure.Events[1].Chord, "D/f+");
    EXPECT_EQ(measure.Events[2].LeftHand, '4');
    EXPECT_EQ(measure.Remark, "slowly");
    EXPECT_EQ(music.Measures.at(1).Events[0].Chord, "Am");
    EXPECT_EQ(ReadAbc("X:1\nT:\xC3\xA9t\xC3\xA9 \xE2\x82\xAC\nK:C\nC\n").at(0).Tune.Title,
              "\xE9t\xE9 \x80");
}

TEST(AbcReaderTest, CharactersThatAreHardToTypeHaveNames)
{
    const std::pair<const char*, const char*> titles[] = {
        {"Caf\\'e \\`a la \\cC",         "Caf\xE9 \xE0 la \xC7"    },
        {"Caf&eacute; &amp; &lt;b&gt;",  "Caf\xE9 & <b>"           },
        {"\\u0025 \\u00fc &#228;&#xdf;", "% \xFC \xE4\xDF"         },
        {"50 \\% \\\\ \\\"u",            "50 % \\ \xFC"            },
        {"\xE9t\\'e",                    "\xE9t\xE9"               },
        {"R&B; \\x &nothing; \\u12",     "R&B; \\x &nothing; \\u12"},
        {"a\\",                          "a\\"                     },
    };
    for (const auto& [written, title] : titles)
        EXPECT_EQ(ReadAbc("X:1\nT:" + std::string(written) + "\nK:C\nC\n").at(0).Tune.Title, title);
}

TEST(AbcReaderTest, WhatStandsBeforeAnyVoiceIsTheFirst)
{
    EXPECT_EQ(Events("C|\nV:1\nD|\nV:2\nE|\nV:1\nF|"), "60:12 | 62:12 | 65:12");
    EXPECT_EQ(Events("V:2\nD|\nV:1\nE|\nV:2\nF|"), "62:12 | 65:12");
    EXPECT_EQ(Events("C|\nV:2\nE|\n"), "60:12");
}

TEST(AbcReaderTest, WhatHasNoPlaceIsTold)
{
    const FoundTune found = AbcTune("{ab}C {c}D & E|F\nw:la la\n[V:2]G|\n");
    EXPECT_EQ(EventText(found.Tune), "60:12 62:12 | 65:12");
    Notices said = found.Said;
    const std::vector<std::string> lines = {"2 groups of grace notes are left out.",
                                            "Only the first voice is read.",
                                            "The words are left out."};
    EXPECT_EQ(said.Lines(), lines);
}

TEST(AbcReaderTest, SignsWithoutAMeaningArePassedOver)
{
    EXPECT_EQ(Events("C * $ ; ` ! ~D .E uF vG y2 \\% D"), "60:12 62:12 64:12 65:12 67:12 62:12");
    EXPECT_EQ(Events("C D % E"), "60:12 62:12");
    EXPECT_EQ(Events("C|\n%%begintext\nD E\n%%endtext\nF|\nr:G\n+:A b\nG"),
              "60:12 | 65:12 | 67:12");
    EXPECT_EQ(Events("[{c}CE]D"), "60,64:12 62:12");
    EXPECT_EQ(Events("C|D \\\n% between\nE|F"), "60:12 | 62:12 64:12 | 65:12");
}

TEST(AbcReaderTest, AFileHoldsSeveralTunes)
{
    const auto found = ReadAbc("% a book\nM:3/4\n\nX:1\nT:One\nK:C\nC\n\nfree text\n\nX:2\r\nT:Two"
                               "\r\nK:D\r\nF|\r\nX:3\nT:Three\n");
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].Tune.Measures.at(0).Beats, 3);
    EXPECT_EQ(EventText(found[1].Tune), "66:6");
    EXPECT_EQ(found[2].Failure.substr(0, 8), "Line 15:");
    EXPECT_THROW(ReadAbc("no tune at all\n"), ExchangeError);
    EXPECT_THROW(ReadAbc(""), ExchangeError);
}

}  // namespace
}  // namespace quillon
