#include "app/export_output.h"

#include "headless/export.h"
#include "store/item_file.h"
#include "store/staged_file.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quillon {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

TEST(NumberedNames, HaveTheirNumberBeforeTheLastDot)
{
    EXPECT_EQ(NumberedNames("a.b/c.d.svg", 3),
              (Names{"a.b/c.d.svg", "a.b/c.d-2.svg", "a.b/c.d-3.svg"}));
    EXPECT_EQ(NumberedNames("a", 2), (Names{"a", "a-2"}));
}

class FilesInUseTest : public testing::Test {
protected:
    /// Of the command with two tunes and the name of none.
    static FilesInUse Begin()
    {
        for (const char* tune : {"a.gui", "b.gui"})
            WriteFileBytes(tune, tune);
        return FilesInUse({"a.gui", "b.gui", "missing.gui"});
    }

    /// Why `output` is not to be made of `tune`.
    std::string Refusal(const std::string& output, const std::string& tune, bool writtenBack) const
    {
        try {
            inUse.Refuse(output, tune, writtenBack);
        } catch (const ExportError& refusal) {
            return refusal.what();
        }
        return "none";
    }

    TemporaryDirectory folder;
    FilesInUse inUse = Begin();
};

TEST_F(FilesInUseTest, ATuneIsOnlyReplacedByItself)
{
    EXPECT_EQ(Refusal("a.gui", "a.gui", true), "none");
    EXPECT_EQ(Refusal("new.gui", "a.gui", true), "none");
    EXPECT_EQ(Refusal("a.gui", "a.gui", false),
              "a.gui is one of the tunes to export; name another place with -o");
    EXPECT_EQ(Refusal("b.gui", "a.gui", true),
              "b.gui is one of the tunes to export; name another place with -o");
}

TEST_F(FilesInUseTest, ATuneIsKnownByAnyName)
{
    fs::create_symlink("b.gui", "link");
    fs::create_hard_link("b.gui", "twin");
    for (const std::string name : {"link", "twin", "./b.gui"})
        EXPECT_EQ(Refusal(name, "a.gui", true),
                  name + " is one of the tunes to export; name another place with -o");
}

TEST_F(FilesInUseTest, WhatHasBeenMadeIsNotReplaced)
{
    ReplaceFile("a.gui", "written back");
    inUse.Add("a.gui", "a.gui");
    fs::create_symlink("a.gui", "link");
    for (const std::string name : {"a.gui", "link"})
        EXPECT_EQ(Refusal(name, "b.gui", true),
                  name + " was already made from a.gui; export this tune to another folder");
}

TEST_F(FilesInUseTest, ADeviceTakesWhateverIsMade)
{
    inUse.Add("/dev/null", "a.gui");
    EXPECT_EQ(Refusal("/dev/null", "b.gui", false), "none");
}

}  // namespace
}  // namespace quillon
