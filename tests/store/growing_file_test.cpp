#include "store/growing_file.h"

#include "store/item_file.h"
#include "store/staged_file.h"
#include "support/faults.h"
#include "support/temporary_directory.h"

#include <cerrno>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quillon {
namespace {

namespace fs = std::filesystem;

class GrowingFileTest : public testing::Test {
protected:
    /// Why a file cannot be begun there, as the system's number; 0 if it can.
    static int ReasonAgainst(const std::string& path)
    {
        try {
            GrowingFile{path};
        } catch (const std::system_error& failure) {
            return failure.code().value();
        }
        return 0;
    }

    TemporaryDirectory folder;
};

TEST_F(GrowingFileTest, HoldsWhatWasAppendedAndReadsAnyPartOfIt)
{
    GrowingFile file("f");
    EXPECT_EQ(file.Path(), "f");
    EXPECT_EQ(file.Size(), 0U);
    file.Append("abc");
    file.Append("");
    file.Append("defg");
    EXPECT_EQ(file.Size(), 7U);
    EXPECT_EQ(file.Read(0, 7), "abcdefg");
    EXPECT_EQ(file.Read(2, 5), "cde");
    EXPECT_EQ(file.Read(7, 7), "");
    EXPECT_EQ(ReadFileBytes("f"), "abcdefg");
}

TEST_F(GrowingFileTest, IsAlwaysNewAndItsOwnersAlone)
{
    {
        const mode_t before = umask(0);
        const GrowingFile file("f");
        umask(before);
        EXPECT_EQ(static_cast<unsigned>(fs::status("f").permissions()), 0600U);
    }
    EXPECT_EQ(ReasonAgainst("f"), EEXIST);
    fs::create_symlink("target", "link");
    EXPECT_EQ(ReasonAgainst("link"), EEXIST);
    EXPECT_FALSE(fs::exists("target"));
    EXPECT_EQ(ReasonAgainst("missing/f"), ENOENT);
    EXPECT_EQ(ReasonAgainst("other"), 0);
}

TEST_F(GrowingFileTest, IsLockedAsLongAsItIsOpen)
{
    {
        const GrowingFile file("f");
        EXPECT_TRUE(IsLocked("f"));
        EXPECT_TRUE(FileLock("f").IsTaken());
    }
    EXPECT_FALSE(IsLocked("f"));
}

TEST_F(GrowingFileTest, IsInPlaceUntilItsNameIsGoneOrAnotherFiles)
{
    const GrowingFile file("f");
    EXPECT_TRUE(file.IsInPlace());
    fs::rename("f", "elsewhere");
    EXPECT_FALSE(file.IsInPlace());
    WriteFileBytes("f", "another");
    EXPECT_FALSE(file.IsInPlace());
    fs::remove("f");
    fs::create_symlink("elsewhere", "f");
    EXPECT_FALSE(file.IsInPlace());
    fs::rename("elsewhere", "f");
    EXPECT_TRUE(file.IsInPlace());
}

TEST_F(GrowingFileTest, ALockIsTakenByOneAtATime)
{
    WriteFileBytes("f", "");
    {
        const FileLock first("f");
        EXPECT_FALSE(first.IsTaken());
        EXPECT_TRUE(FileLock("f").IsTaken());
    }
    EXPECT_FALSE(FileLock("f").IsTaken());
}

TEST_F(GrowingFileTest, WhatCannotBeOpenedIsNotTaken)
{
    const GrowingFile file("f");
    fs::create_symlink("f", "link");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"missing", "link", "pipe"}) {
        EXPECT_FALSE(FileLock(path).IsTaken()) << path;
        EXPECT_FALSE(FileLock(path).IsOfAnotherUser()) << path;
    }
}

TEST_F(GrowingFileTest, AFileOfAnotherUserIsKnownAsSuch)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    for (const char* path : {"own", "given"})
        WriteFileBytes(path, "");
    ASSERT_EQ(chown("given", 1234, 5678), 0);
    EXPECT_FALSE(FileLock("own").IsOfAnotherUser());
    EXPECT_TRUE(FileLock("given").IsOfAnotherUser());
}

}  // namespace
}  // namespace quillon
