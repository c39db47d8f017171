#include "app/tune_sources.h"

#include "store/item_file.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

class TuneSourcesTest : public testing::Test {
protected:
    std::vector<TuneSource> Sources(const std::string& name, const std::string& bytes)
    {
        const std::string path = folder.Path(name);
        WriteFileBytes(path, bytes);
        return SourcesOf(command, path);
    }

    TemporaryDirectory folder;
    ExportCommand command;
};

TEST_F(TuneSourcesTest, ATuneOfOurOwnIsTakenAsItIs)
{
    const auto sources = Sources("a.gui", "anything");
    ASSERT_EQ(sources.size(), 1U);
    EXPECT_FALSE(sources[0].IsForeign());
    EXPECT_EQ(sources[0].Name, "a");
}

TEST_F(TuneSourcesTest, TheTunesOfABookAreNamedByNumberAndTitle)
{
    const auto sources =
        Sources("book.abc", "X:1\nT:The Boys' Reel, No. 2\nK:C\nC\n\nX:2\nT:\nK:D\nD\n");
    ASSERT_EQ(sources.size(), 2U);
    EXPECT_EQ(sources[0].Name, "01_the_boys_reel_no_2");
    EXPECT_EQ(sources[1].Name, "02");
    EXPECT_EQ(Sources("one.abc", "X:1\nT:One\nK:C\nC\n").at(0).Name, "one");
}

TEST_F(TuneSourcesTest, TheInstrumentIsTheOptionsOrTheOutputs)
{
    const std::string tune = "X:1\nK:C\nC\n";
    EXPECT_EQ(Sources("a.abc", tune).at(0).Strings, 6);
    command.Output = "a.bjo";
    EXPECT_EQ(Sources("a.abc", tune).at(0).Strings, 5);
    command.Options.Strings = 4;
    EXPECT_EQ(Sources("a.abc", tune).at(0).Strings, 4);
}

TEST_F(TuneSourcesTest, WhatCannotBeReadSaysWhyAndWhatToDo)
{
    EXPECT_THROW(Sources("a.abc", "nothing"), ExportError);
    const auto sources = Sources("b.abc", "X:1\nK:C\nC\n\nX:2\nT:No key\n\nX:3\nK:C\n|\n");
    ASSERT_EQ(sources.size(), 3U);
    EXPECT_EQ(sources[0].Failure, "");
    EXPECT_EQ(sources[1].Failure, "Line 5: the tune that begins here has no line with its key; add "
                                  "one such as K:G before the music.");
    EXPECT_NE(sources[2].Failure, "");
}

TEST_F(TuneSourcesTest, ATuneIsOneWhateverItsExtension)
{
    EXPECT_FALSE(Sources("a.txt", "0,0,0\r\n0,0,0,0\r\n").at(0).IsForeign());
    EXPECT_THROW(Sources("a.txt", "words, and words, and words\n"), ExportError);
    EXPECT_FALSE(SourcesOf(command, "missing.txt").at(0).IsForeign());
}

TEST_F(TuneSourcesTest, FromTellsTheFormOfAnyFile)
{
    EXPECT_FALSE(Sources("a.text", "X:1\nK:C\nC\n").at(0).IsForeign());
    command.From = "abc";
    EXPECT_TRUE(Sources("a.text", "X:1\nK:C\nC\n").at(0).IsForeign());
}

}  // namespace
}  // namespace quillon
