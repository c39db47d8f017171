#include "exchange/mxl.h"

#include "exchange/forms.h"
#include "exchange/musicxml_writer.h"
#include "zip/zip_archive.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

Music OneNote(const std::string& title)
{
    Music music;
    music.Title = title;
    MusicNote note;
    note.Pitch = 67;
    note.String = 1;
    note.Fret = 3;
    MusicEvent& event = music.Measures.emplace_back().Events.emplace_back();
    event.Length = 4 * kQuarterUnits;
    event.Notes = {note};
    music.OpenPitches = {64, 59, 55, 50, 45, 40};
    return music;
}

std::string Score(const std::string& title)
{
    Notices ignored;
    return WriteMusicXml(OneNote(title), ignored);
}

std::string Packed(const std::string& title)
{
    Notices ignored;
    return WriteMxl(OneNote(title), ignored);
}

ZipEntry Container(const std::string& path)
{
    return {"META-INF/container.xml",
            "<container><rootfiles><rootfile full-path=\"" + path + "\"/></rootfiles></container>"};
}

std::string TitleIn(const std::string& bytes)
{
    return ReadMxl(bytes).at(0).Tune.Title;
}

std::string WhyNot(const std::string& bytes)
{
    try {
        ReadMxl(bytes);
    } catch (const ExchangeError& error) {
        return error.what();
    }
    return "";
}

TEST(Mxl, WhatIsPackedIsReadAsItWas)
{
    const Music music = ReadMxl(Packed("Packed")).at(0).Tune;
    EXPECT_EQ(music, ReadMxl(Score("Packed")).at(0).Tune);
    EXPECT_EQ(music.Measures[0].Events[0].Notes[0].Fret, 3);
}

TEST(Mxl, ItsContentTellsWhetherItIsPackedNotItsExtension)
{
    for (const char* form : {"mxl", "musicxml"})
        for (const std::string& bytes : {Packed("Any"), Score("Any")})
            EXPECT_EQ(ReadForm(*FindForm(form), bytes).at(0).Tune.Title, "Any");
}

TEST(Mxl, ItsTypeStandsFirstAndUncompressed)
{
    const std::string packed = Packed("First");
    EXPECT_EQ(packed.substr(30, 42), "mimetypeapplication/vnd.recordare.musicxml");
    EXPECT_EQ(ZipNames(packed),
              (std::vector<std::string>{"mimetype", "META-INF/container.xml", "score.musicxml"}));
    EXPECT_EQ(packed, Packed("First")) << "nothing of the time is in it";
}

TEST(Mxl, TheContainerSaysWhichFileIsTheScore)
{
    const ZipEntry other{"a.xml", Score("Other")};
    const ZipEntry right{"scores/right.xml", Score("Right")};
    EXPECT_EQ(TitleIn(MakeZip({other, right, Container("scores/right.xml")})), "Right");
    EXPECT_EQ(TitleIn(MakeZip({other, right})), "Other") << "without a container the first";
}

TEST(Mxl, ANameInAnotherCharacterSetIsFoundAllTheSame)
{
    EXPECT_EQ(TitleIn(MakeZip({
                  {"B\x81"
                   "cher.xml", Score("Code page")},
                  Container("B\xc3\xbc"
                            "cher.xml")
    })),
              "Code page");
}

TEST(Mxl, WhatUnpacksToFarMoreThanAScoreIsRefused)
{
    const std::string bomb = MakeZip({
        {"score.xml", std::string(30'000'000, ' ')}
    });
    EXPECT_LT(bomb.size(), 200'000U);
    EXPECT_EQ(WhyNot(bomb),
              "It unpacks to more than a score can have. Export it again from its program.");
}

TEST(Mxl, AnArchiveWithoutAScoreSaysSo)
{
    const std::string reason =
        "There is no score in it; export one from the program that it comes from.";
    EXPECT_EQ(WhyNot(MakeZip({
                  {"notes.txt", "none"}
    })),
              reason);
    EXPECT_EQ(WhyNot(MakeZip({Container("missing.xml")})), reason);
    EXPECT_EQ(WhyNot(MakeZip({})), "Line 1: it is no XML from here on (No document element found). "
                                   "Export it again from its program.");
}

TEST(Mxl, ADamagedArchiveIsAnErrorInWords)
{
    const std::string whole = Packed("Whole");
    for (std::size_t size = 4; size < whole.size(); size += 7)
        EXPECT_EQ(WhyNot(whole.substr(0, size)),
                  "It is no ZIP archive, or a damaged one. Export it again from its program.");
    std::string changed = whole;
    changed[changed.find("score.musicxml") + 40] ^= 1;
    EXPECT_NE(WhyNot(changed), "");
    EXPECT_NE(WhyNot(MakeZip({
                  {"META-INF/container.xml", "<"       },
                  {"score.xml",              Score("A")}
    })),
              "");
}

}  // namespace
}  // namespace quillon
