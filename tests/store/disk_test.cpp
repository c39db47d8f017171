// What files do when the disk is full, slow or broken. The calls to the system are answered here:
// this executable's own functions come before those of the C library.

#include "store/growing_file.h"
#include "store/item_file.h"
#include "store/staged_file.h"
#include "support/faults.h"
#include "support/temporary_directory.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace quillon {
namespace {

class DiskTest;
DiskTest* diskInCharge = nullptr;

class DiskTest : public testing::Test {
public:
    /// Records the call. Returns false, with errno set, if the call is to fail, or if there have
    /// been so many that the program must be in an endless loop.
    bool Passes(const std::string& call, int descriptor)
    {
        constexpr std::size_t kMostCalls = 100;
        Calls.push_back(call + ' ' + NameOf(descriptor));
        if (Calls.size() > kMostCalls) {
            errno = EDEADLK;
            return false;
        }
        std::deque<int>& errors = Errors[call];
        const int error = errors.empty() ? 0 : errors.front();
        if (!errors.empty())
            errors.pop_front();
        errno = error != 0 ? error : EINTR;  // a call that succeeds may leave anything there
        return error == 0;
    }

    std::size_t MostBytes = std::numeric_limits<std::size_t>::max();  // that one call takes
    std::vector<std::size_t> Asked;                                   // bytes of each call to read

protected:
    using Names = std::vector<std::string>;

    DiskTest() { diskInCharge = this; }
    ~DiskTest() override { diskInCharge = nullptr; }

    /// The error number with which `work` fails, 0 if it does not.
    template <typename Work> static int ReasonOf(Work work)
    {
        try {
            work();
        } catch (const std::system_error& failure) {
            return failure.code().value();
        }
        return 0;
    }

    /// The descriptor that the next file would get.
    static int NextDescriptor()
    {
        const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
        close(descriptor);
        return descriptor;
    }

    TemporaryDirectory folder;
    Names Calls;
    std::map<std::string, std::deque<int>> Errors;  // of the next calls by name; 0 lets one pass

private:
    std::string NameOf(int descriptor) const
    {
        const auto path =
            std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor));
        if (path == folder.Path())
            return "the folder";
        const std::string name = path.filename().string();
        return name.starts_with(".quillon-") ? "the new file" : name;
    }
};

}  // namespace
}  // namespace quillon

extern "C" {

int fsync(int descriptor)
{
    const bool passes =
        !quillon::diskInCharge || quillon::diskInCharge->Passes("fsync", descriptor);
    return passes ? static_cast<int>(syscall(SYS_fsync, descriptor)) : -1;
}

int fdatasync(int descriptor)
{
    const bool passes =
        !quillon::diskInCharge || quillon::diskInCharge->Passes("fdatasync", descriptor);
    return passes ? static_cast<int>(syscall(SYS_fdatasync, descriptor)) : -1;
}

ssize_t write(int descriptor, const void* bytes, std::size_t size)
{
    if (!quillon::diskInCharge)
        return syscall(SYS_write, descriptor, bytes, size);
    if (!quillon::diskInCharge->Passes("write", descriptor))
        return -1;
    return syscall(SYS_write, descriptor, bytes, std::min(size, quillon::diskInCharge->MostBytes));
}

ssize_t pread(int descriptor, void* bytes, std::size_t size, off_t from)
{
    if (!quillon::diskInCharge)
        return syscall(SYS_pread64, descriptor, bytes, size, from);
    quillon::diskInCharge->Asked.push_back(size);
    if (!quillon::diskInCharge->Passes("pread", descriptor))
        return -1;
    return syscall(SYS_pread64, descriptor, bytes, std::min(size, quillon::diskInCharge->MostBytes),
                   from);
}

}  // extern "C"

namespace quillon {
namespace {

TEST_F(DiskTest, AGrowingFileTakesAllBytesHoweverFewPassAtATime)
{
    GrowingFile file("f");
    MostBytes = 3;
    file.Append("0123456789");
    file.Append("abcd");
    EXPECT_EQ(file.Size(), 14U);
    EXPECT_EQ(file.Read(1, 13), "123456789abc");
    EXPECT_EQ(Asked, (std::vector<std::size_t>{12, 9, 6, 3}));
    EXPECT_EQ(ReadFileBytes("f"), "0123456789abcd");
}

TEST_F(DiskTest, AnInterruptedCallIsMadeAgain)
{
    GrowingFile file("f");
    Errors["write"] = {EINTR, 0, EINTR};
    MostBytes = 3;
    file.Append("abcdef");
    Errors["pread"] = {EINTR, 0, EINTR};
    MostBytes = 1;
    EXPECT_EQ(file.Read(0, 6), "abcdef");
    Errors["write"] = {EINTR, 0, EINTR};
    ReplaceFile("g", "abcdef");
    EXPECT_EQ(ReadFileBytes("g"), "abcdef");
}

TEST_F(DiskTest, WhatDoesNotFitIsCutOffAndTheGrowingFileGoesOn)
{
    GrowingFile file("f");
    file.Append("kept");
    MostBytes = 3;
    Errors["write"] = {0, ENOSPC};
    EXPECT_EQ(ReasonOf([&] { file.Append("too much"); }), ENOSPC);
    EXPECT_EQ(file.Size(), 4U);
    EXPECT_EQ(ReadFileBytes("f"), "kept");
    file.Append("more");
    EXPECT_EQ(file.Read(0, 8), "keptmore");
}

TEST_F(DiskTest, ADiskThatTakesNothingIsFull)
{
    GrowingFile file("f");
    MostBytes = 0;
    EXPECT_EQ(ReasonOf([&] { file.Append("x"); }), ENOSPC);
    EXPECT_EQ(ReasonOf([] { ReplaceFile("g", "x"); }), ENOSPC);
    EXPECT_FALSE(std::filesystem::exists("g"));
}

TEST_F(DiskTest, WhatCannotBeReadBackHasTheSystemsReasonOrIsAnInputError)
{
    GrowingFile file("f");
    file.Append("abc");
    Errors["pread"] = {EACCES};
    EXPECT_EQ(ReasonOf([&] { file.Read(0, 3); }), EACCES);
    EXPECT_EQ(ReasonOf([&] { file.Read(0, 4); }), EIO) << "it ends before";
}

TEST_F(DiskTest, AGrowingFileIsSyncedWhereTheDiskCan)
{
    GrowingFile file("f");
    file.Sync();
    EXPECT_EQ(Calls, Names{"fdatasync f"});
    for (const int unknownThere : {EINVAL, ENOTSUP}) {
        Errors["fdatasync"] = {unknownThere};
        EXPECT_EQ(ReasonOf([&] { file.Sync(); }), 0) << unknownThere;
    }
    Errors["fdatasync"] = {EIO};
    EXPECT_EQ(ReasonOf([&] { file.Sync(); }), EIO);
}

TEST_F(DiskTest, AFileIsReplacedAfterItsBytesAreSyncedAndThenItsFolderIs)
{
    MostBytes = 3;
    ReplaceFile(folder.Path("f"), "abcdef");
    EXPECT_EQ(Calls, (Names{"write the new file", "write the new file", "fsync the new file",
                            "fsync the folder"}));
    EXPECT_EQ(ReadFileBytes("f"), "abcdef");
}

TEST_F(DiskTest, AFileWhoseBytesDoNotReachTheDiskIsNotReplaced)
{
    WriteFileBytes("f", "earlier");
    for (const char* call : {"write", "fsync"}) {
        Errors[call] = {EIO};
        EXPECT_EQ(ReasonOf([] { ReplaceFile("f", "new"); }), EIO) << call;
        EXPECT_EQ(ReadFileBytes("f"), "earlier") << call;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
}

TEST_F(DiskTest, WhereNothingCanBeSyncedAFileIsReplacedAllTheSame)
{
    for (const int unknownThere : {EINVAL, ENOTSUP}) {
        Errors["fsync"] = {unknownThere, EIO};
        ReplaceFile("f", std::to_string(unknownThere));
        EXPECT_EQ(ReadFileBytes("f"), std::to_string(unknownThere));
    }
}

TEST_F(DiskTest, AFileThatSomeoneElseWroteIsSyncedIfItIsRegularAndOpens)
{
    WriteFileBytes("f", "");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"pipe", ".", "missing", "", "/dev/null"})
        SyncFile(path);
    EXPECT_EQ(Calls, Names{});
    SyncFile("f");
    EXPECT_EQ(Calls, Names{"fsync f"});
    for (const int unknownThere : {EINVAL, ENOTSUP}) {
        Errors["fsync"] = {unknownThere};
        EXPECT_EQ(ReasonOf([] { SyncFile("f"); }), 0) << unknownThere;
    }
    Errors["fsync"] = {EIO};
    EXPECT_EQ(ReasonOf([] { SyncFile("f"); }), EIO);
}

TEST_F(DiskTest, AFolderIsSyncedAsFarAsItCan)
{
    WriteFileBytes("f", "");
    for (const char* path : {"f", "missing"})
        SyncFolder(path);
    EXPECT_EQ(Calls, Names{});
    SyncFolder("");
    Errors["fsync"] = {EIO};
    SyncFolder(folder.Path());
    EXPECT_EQ(Calls, (Names{"fsync the folder", "fsync the folder"}));
}

TEST_F(DiskTest, NoFileStaysOpen)
{
    const int next = NextDescriptor();
    {
        GrowingFile file("grown");
        const FileLock taken("grown");
        ReplaceFile("f", "x");
        const FileLock own("f");
    }
    SyncFile("f");
    SyncFolder("");
    EXPECT_FALSE(IsLocked("f"));
    EXPECT_EQ(NextDescriptor(), next);
}

}  // namespace
}  // namespace quillon
