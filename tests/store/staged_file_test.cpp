#include "store/staged_file.h"

#include "store/item_file.h"
#include "support/not_root.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// Why `work` fails, as the system's number; 0 if it does not.
template <typename Work> int Reason(Work work)
{
    try {
        work();
    } catch (const std::system_error& failure) {
        return failure.code().value();
    }
    return 0;
}

unsigned ModeOf(const fs::path& path)
{
    return static_cast<unsigned>(fs::status(path).permissions());
}

class StagedFileTest : public testing::Test {
protected:
    StagedFileTest() : maskBefore(umask(022)) {}
    ~StagedFileTest() override { umask(maskBefore); }

    /// The files in the folder.
    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    using Files = std::vector<std::string>;

    TemporaryDirectory folder;
    mode_t maskBefore;
};

TEST_F(StagedFileTest, ReplacesAFileOnlyWhenItTakesItsPlace)
{
    WriteFileBytes("f", "earlier");
    {
        StagedFile staged("f");
        staged.Write("new");
        EXPECT_EQ(ReadFileBytes("f"), "earlier");
        EXPECT_EQ(ReadFileBytes(staged.Path()), "new");
        staged.TakePlace();
    }
    EXPECT_EQ(ReadFileBytes("f"), "new");
    EXPECT_EQ(Names(), Files{"f"});
}

TEST_F(StagedFileTest, LeavesNothingWhenItIsGivenUp)
{
    WriteFileBytes("f", "earlier");
    StagedFile("f").Write("new");
    StagedFile("other").Write("new");
    EXPECT_EQ(ReadFileBytes("f"), "earlier");
    EXPECT_EQ(Names(), Files{"f"});
}

TEST_F(StagedFileTest, TwoForOnePlaceDoNotMixTheirBytes)
{
    StagedFile first("f"), second("f");
    first.Write(std::string(10000, '1'));
    second.Write("2");
    first.TakePlace();
    EXPECT_EQ(ReadFileBytes("f"), std::string(10000, '1'));
    second.TakePlace();
    EXPECT_EQ(ReadFileBytes("f"), "2");
    EXPECT_EQ(Names(), Files{"f"});
}

TEST_F(StagedFileTest, ANewFileHasTheModeThatTheMaskLeaves)
{
    ReplaceFile("f", "x");
    EXPECT_EQ(ModeOf("f"), 0644u);
    ReplaceFile("private", "x", 0600);
    EXPECT_EQ(ModeOf("private"), 0600u);
}

TEST_F(StagedFileTest, AReplacedFileKeepsItsMode)
{
    for (const unsigned mode : {0600u, 0666u, 0755u}) {
        WriteFileBytes("f", "earlier");
        fs::permissions("f", static_cast<fs::perms>(mode));
        ReplaceFile("f", "x");
        EXPECT_EQ(ModeOf("f"), mode);
    }
}

TEST_F(StagedFileTest, AReplacedFileKeepsItsOwner)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    WriteFileBytes("f", "earlier");
    ASSERT_EQ(chown("f", 1234, 5678), 0);
    ReplaceFile("f", "x");
    struct stat there;
    ASSERT_EQ(stat("f", &there), 0);
    EXPECT_EQ(there.st_uid, 1234u);
    EXPECT_EQ(there.st_gid, 5678u);
}

TEST_F(StagedFileTest, AGroupThatCannotStayDoesNotLeaveItsPermissionsToAnother)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    WriteFileBytes("f", "earlier");
    ASSERT_EQ(chown("f", 65534, 1234), 0);
    fs::permissions("f", static_cast<fs::perms>(0675));
    const NotRoot user(folder.Path());
    ReplaceFile("f", "x");
    struct stat there;
    ASSERT_EQ(stat("f", &there), 0);
    EXPECT_NE(there.st_gid, 1234u);
    EXPECT_EQ(ModeOf("f"), 0605u);
}

TEST_F(StagedFileTest, AWriteProtectedFileIsKept)
{
    const NotRoot user(folder.Path());
    WriteFileBytes("f", "earlier");
    fs::permissions("f", fs::perms::owner_read);
    EXPECT_EQ(Reason([] { ReplaceFile("f", "x"); }), EACCES);
    EXPECT_EQ(ReadFileBytes("f"), "earlier");
    EXPECT_EQ(Names(), Files{"f"});
}

TEST_F(StagedFileTest, OnlyRegularFilesAreReplaced)
{
    const NotRoot user(folder.Path());  // who could replace the device
    fs::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    fs::create_symlink("/dev/null", "device");
    EXPECT_EQ(Reason([] { ReplaceFile("folder", "x"); }), EISDIR);
    EXPECT_EQ(Reason([] { ReplaceFile("pipe", "x"); }), ENOTSUP);
    EXPECT_EQ(Reason([] { ReplaceFile("device", "x"); }), ENOTSUP);
    EXPECT_EQ(Names(), (Files{"device", "folder", "pipe"}));
}

TEST_F(StagedFileTest, PathsThatLeadNowhereHaveTheSystemsReason)
{
    fs::create_symlink("round", "round");
    WriteFileBytes("f", "");
    EXPECT_EQ(Reason([] { ReplaceFile("missing/f", "x"); }), ENOENT);
    EXPECT_EQ(Reason([] { ReplaceFile("f/f", "x"); }), ENOTDIR);
    EXPECT_EQ(Reason([] { ReplaceFile("round", "x"); }), ELOOP);
    EXPECT_EQ(Reason([] { ReplaceFile(std::string(256, 'x'), "x"); }), ENAMETOOLONG);
    EXPECT_EQ(Reason([] { ReplaceFile(std::string(255, 'x'), "x"); }), 0);
}

TEST_F(StagedFileTest, ALinkStaysAndLeadsToTheNewFile)
{
    fs::create_directory("sub");
    fs::create_symlink("../target", "sub/relative");
    fs::create_symlink(folder.Path("sub/relative"), "link");
    for (const char* bytes : {"new", "newer"}) {
        ReplaceFile("link", bytes);
        EXPECT_EQ(ReadFileBytes("target"), bytes);
    }
    EXPECT_TRUE(fs::is_symlink("link") && fs::is_symlink("sub/relative"));
    EXPECT_EQ(Names(), (Files{"link", "sub", "target"}));
}

TEST_F(StagedFileTest, FortyLinksInARowAreFollowedAndNotOneMore)
{
    fs::create_symlink("target", "link1");
    for (int link = 2; link <= 41; ++link)
        fs::create_symlink("link" + std::to_string(link - 1), "link" + std::to_string(link));
    ReplaceFile("link40", "x");
    EXPECT_EQ(ReadFileBytes("target"), "x");
    EXPECT_EQ(Reason([] { ReplaceFile("link41", "y"); }), ELOOP);
}

TEST_F(StagedFileTest, FilesThatBelongTogetherAreNumberedFromTheSecondOn)
{
    EXPECT_EQ(NumberedNames("folder/page.png", 3),
              (Files{"folder/page.png", "folder/page-2.png", "folder/page-3.png"}));
    EXPECT_EQ(NumberedNames("page", 2), (Files{"page", "page-2"}));
    EXPECT_EQ(NumberedNames("page.png", 1), Files{"page.png"});
}

TEST_F(StagedFileTest, StreamsArePipesDevicesAndOpenFiles)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    fs::create_symlink("pipe", "link");
    WriteFileBytes("f", "");
    const int open = ::open("f", O_WRONLY | O_CLOEXEC);
    const std::string openFile = "/dev/fd/" + std::to_string(open);
    fs::create_symlink(openFile, "open");
    for (const char* stream : {"pipe", "link", "/dev/null", "/dev/stdout", "open"})
        EXPECT_TRUE(IsStream(stream)) << stream;
    EXPECT_TRUE(IsStream(openFile));
    close(open);
    fs::create_symlink("missing", "dangling");
    for (const char* place : {"f", "dangling", "missing", "missing/f", "."})
        EXPECT_FALSE(IsStream(place)) << place;
}

TEST_F(StagedFileTest, ALockedFileIsSeenAsSuchUnderEachOfItsNamesUntilItsObjectGoes)
{
    {
        TemporaryFile file(folder.Path(), 0600);
        file.Write("one");
        EXPECT_FALSE(IsLocked(file.Path()));
        file.Lock();
        EXPECT_TRUE(IsLocked(file.Path()));
        file.Rename("f");
        EXPECT_TRUE(IsLocked("f"));
        fs::create_symlink("f", "link");
        EXPECT_TRUE(IsLocked("link"));
    }
    EXPECT_FALSE(IsLocked("f"));
    EXPECT_EQ(ReadFileBytes("f"), "one");
}

TEST_F(StagedFileTest, NothingButALockedFileIsLocked)
{
    WriteFileBytes("f", "");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"f", "pipe", "missing", ".", ""})
        EXPECT_FALSE(IsLocked(path)) << path;
}

}  // namespace
}  // namespace quillon
