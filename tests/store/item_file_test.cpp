#include "store/item_file.h"

#include "support/faults.h"
#include "support/not_root.h"
#include "support/temporary_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <vector>

namespace quillon {
namespace {

std::vector<int> Numbers(const std::string& bytes)
{
    ItemReader reader(bytes);
    std::vector<int> numbers;
    while (!reader.AtEnd())
        numbers.push_back(reader.Number());
    return numbers;
}

std::vector<std::string> Texts(const std::string& bytes)
{
    ItemReader reader(bytes);
    std::vector<std::string> texts;
    while (!reader.AtEnd())
        texts.push_back(reader.Text());
    return texts;
}

TEST(ItemReader, TakesAnItemWhereverItStands)
{
    EXPECT_EQ(Numbers("1,2\r\n3\r\n4,5,6"), (std::vector{1, 2, 3, 4, 5, 6}));
}

TEST(ItemReader, EndsALineAtCrAtLfAndAtBoth)
{
    EXPECT_EQ(Numbers("1\r2\n3\r\n4"), (std::vector{1, 2, 3, 4}));
    EXPECT_EQ(Texts("\"a\"\r\"b\"\n\"c\"\r\n\"d\""),
              (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST(ItemReader, TakesAnEmptyLineAsAnEmptyItem)
{
    EXPECT_EQ(Numbers("1\n\n2\r\n\r\n3"), (std::vector{1, 0, 2, 0, 3}));
    EXPECT_EQ(Numbers("1\n\r2"), (std::vector{1, 0, 2}));
    EXPECT_EQ(Numbers("1,,2"), (std::vector{1, 0, 2}));
}

TEST(ItemReader, NeedsNoLineEndAtTheEnd)
{
    EXPECT_EQ(Numbers("1,2"), Numbers("1,2\r\n"));
    EXPECT_EQ(Texts("\"a\""), Texts("\"a\"\r\n"));
}

TEST(ItemReader, ReadsAQuotedTextWhereANumberIsDueAsZero)
{
    EXPECT_EQ(Numbers("\"5\",6"), (std::vector{0, 6}));
    EXPECT_EQ(Numbers("abc,6"), (std::vector{0, 6}));
}

TEST(ItemReader, TakesTheLeadingNumberOfAnItem)
{
    EXPECT_EQ(Numbers("12abc, 7 ,2.5,3.5,-4"), (std::vector{12, 7, 2, 4, -4}));
}

TEST(ItemReader, PastSixteenBitsIsAnOverflow)
{
    EXPECT_EQ(Numbers("32767,-32768"), (std::vector{32767, -32768}));
    EXPECT_FAULT(Numbers("32768"), Overflow);
    EXPECT_FAULT(Numbers("-32769"), Overflow);
    EXPECT_FAULT(Numbers("99999999999"), Overflow);
    EXPECT_FAULT(Numbers("1e999"), Overflow);
}

TEST(ItemReader, EndsATextAtTheNextQuoteAndDropsTheRestOfTheItem)
{
    EXPECT_EQ(Texts("\"a\"b\",\"c\""), (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(Texts("\"a\"b c\r\n\"d\""), (std::vector<std::string>{"a", "d"}));
}

TEST(ItemReader, LetsTheRestAfterAnInnerQuoteAndACommaSlipIntoTheNextItem)
{
    EXPECT_EQ(Texts("\"say \"a, b\"\r\n\"c\""), (std::vector<std::string>{"say ", " b\"", "c"}));
}

TEST(ItemReader, KeepsCommasAndLineEndsWithinAText)
{
    EXPECT_EQ(Texts("\"a,b\r\nc\",\"d\""), (std::vector<std::string>{"a,b\r\nc", "d"}));
}

TEST(ItemReader, ReadsATextWithoutOpeningQuoteUpToTheNextCommaOrLineEnd)
{
    EXPECT_EQ(Texts("abc,de f\r\ng"), (std::vector<std::string>{"abc", "de f", "g"}));
    EXPECT_EQ(Texts("7\r\n\"x\""), (std::vector<std::string>{"7", "x"}));
}

TEST(ItemReader, ReadsATextWithoutClosingQuoteToTheEndOfTheFile)
{
    EXPECT_EQ(Texts("\"abc,d\r\ne"), (std::vector<std::string>{"abc,d\r\ne"}));
    EXPECT_EQ(Texts("\""), (std::vector<std::string>{""}));
}

TEST(ItemReader, SkipsBlanksBeforeAQuote)
{
    EXPECT_EQ(Texts("1, \"a\"  ,\"b\""), (std::vector<std::string>{"1", "a", "b"}));
}

TEST(ItemReader, KeepsTheBlanksRoundATextWithoutQuotes)
{
    EXPECT_EQ(Texts(" a ,\tb\r\n "), (std::vector<std::string>{" a ", "\tb", " "}));
}

TEST(ItemReader, EndsANumberAtTheFirstCommaAlsoWithinQuotes)
{
    EXPECT_EQ(Numbers("\"1,5\",6"), (std::vector{0, 5, 6}));
    EXPECT_EQ(Numbers("3\"4,5"), (std::vector{3, 5}));
}

TEST(ItemReader, AtTheEndIsInputPastEnd)
{
    ItemReader empty("");
    EXPECT_TRUE(empty.AtEnd());
    EXPECT_FAULT(empty.Number(), InputPastEnd);
    EXPECT_FAULT(empty.Text(), InputPastEnd);
    ItemReader one("1\r\n");
    EXPECT_EQ(one.Number(), 1);
    EXPECT_TRUE(one.AtEnd());
    EXPECT_FAULT(one.Number(), InputPastEnd);
}

TEST(ItemWriter, JoinsItemsByCommasAndEndsLinesInCrLf)
{
    ItemWriter writer;
    writer.Number(1).Number(-32768).Text("a b").EndLine().Text("").EndLine();
    EXPECT_EQ(writer.Bytes(), "1,-32768,\"a b\"\r\n\"\"\r\n");
}

TEST(ItemWriter, WritesAQuoteWithinATextAsItIs)
{
    ItemWriter writer;
    writer.Text("say \"hi\"").EndLine();
    EXPECT_EQ(writer.Bytes(), "\"say \"hi\"\"\r\n");
}

class FileBytes : public testing::Test {
protected:
    TemporaryDirectory folder;
};

TEST_F(FileBytes, ComeBackByteForByte)
{
    const std::string bytes("a\0\r\n\xff\"", 6);
    WriteFileBytes("f", bytes);
    EXPECT_EQ(ReadFileBytes("f"), bytes);
    WriteFileBytes("f", "");
    EXPECT_EQ(ReadFileBytes("f"), "");
}

TEST_F(FileBytes, AreNotFoundWhenMissing)
{
    EXPECT_FAULT(ReadFileBytes("missing"), FileNotFound);
    EXPECT_FAULT(ReadFileBytes(""), FileNotFound);
    EXPECT_FAULT(ReadFileBytes("missing/f"), FileNotFound);
}

TEST_F(FileBytes, OfAPipeOrADeviceAreNotFoundAtOnce)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    std::filesystem::create_symlink("pipe", "link");
    for (const char* path : {"pipe", "link", "/dev/null", "/dev/zero"})
        EXPECT_FAULT(ReadFileBytes(path), FileNotFound);
}

TEST_F(FileBytes, AreReadUpTo64MegabytesAndNotAByteFurther)
{
    WriteFileBytes("f", "");
    std::filesystem::resize_file("f", 64 << 20);
    EXPECT_EQ(ReadFileBytes("f").size(), 64U << 20);
    std::filesystem::resize_file("f", (64 << 20) + 1);
    EXPECT_FAULT(ReadFileBytes("f"), Overflow);
}

TEST_F(FileBytes, AreNotWrittenToAPipe)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_FAULT(WriteFileBytes("pipe", "x"), PathFileAccess);
    EXPECT_EQ(errno, ENXIO);
}

TEST_F(FileBytes, ThatAreADirectoryAreAnAccessError)
{
    EXPECT_FAULT(ReadFileBytes(folder.Path()), PathFileAccess);
    EXPECT_FAULT(WriteFileBytes(folder.Path(), "x"), PathFileAccess);
}

TEST_F(FileBytes, ThatOpenButCannotBeReadAreAnAccessError)
{
    EXPECT_FAULT(ReadFileBytes("/proc/self/mem"), PathFileAccess);
}

TEST_F(FileBytes, WithoutPermissionAreAnAccessError)
{
    const NotRoot user(folder.Path());
    WriteFileBytes("f", "x");
    std::filesystem::permissions("f", std::filesystem::perms::none);
    EXPECT_FAULT(ReadFileBytes("f"), PathFileAccess);
    EXPECT_FAULT(WriteFileBytes("f", "y"), PathFileAccess);
}

TEST_F(FileBytes, ThatCannotBeWrittenAreAnAccessError)
{
    EXPECT_FAULT(WriteFileBytes("missing/f", "x"), PathFileAccess);
    EXPECT_FAULT(WriteFileBytes("", "x"), PathFileAccess);
    EXPECT_FAULT(WriteFileBytes("/dev/full", std::string(100000, 'x')), PathFileAccess);
}

TEST_F(FileBytes, ThatCannotBeWrittenLeaveTheReasonInErrno)
{
    const auto reason = [](const std::string& path, std::size_t size) {
        EXPECT_FAULT(WriteFileBytes(path, std::string(size, 'x')), PathFileAccess);
        return errno;
    };
    EXPECT_EQ(reason("missing/f", 1), ENOENT);
    EXPECT_EQ(reason(folder.Path(), 1), EISDIR);
    EXPECT_EQ(reason("/dev/full", 1), ENOSPC);
    EXPECT_EQ(reason("/dev/full", 100000), ENOSPC);
}

TEST_F(FileBytes, AreGoneWhenDeleted)
{
    WriteFileBytes("f", "x");
    DeleteFile("f");
    EXPECT_FALSE(std::filesystem::exists("f"));
    DeleteFile("f");
}

TEST_F(FileBytes, ThatCannotBeDeletedAreAnAccessError)
{
    std::filesystem::create_directories("taken/inside");
    EXPECT_FAULT(DeleteFile("taken"), PathFileAccess);
    EXPECT_FAULT(DeleteFile("/proc/self/status"), PathFileAccess);
}

TEST(FileFaults, NameTheFileAndTheReason)
{
    const TemporaryDirectory folder;
    std::filesystem::create_directory("full");
    const auto file = [](auto work) {
        try {
            work();
        } catch (const Fault& fault) {
            return fault.File();
        }
        return std::string("no fault");
    };
    EXPECT_EQ(file([] { ReadFileBytes("none"); }),
              folder.Path("none") + " (No such file or directory)");
    EXPECT_EQ(file([] { WriteFileBytes("none/f", "x"); }),
              folder.Path("none/f") + " (No such file or directory)");
    EXPECT_EQ(file([] { WriteFileBytes("full", "x"); }), folder.Path("full") + " (Is a directory)");
    EXPECT_EQ(file([] { WriteFileBytes("/dev/full", "x"); }),
              "/dev/full (No space left on device)");
    std::filesystem::create_directory("full/inside");
    EXPECT_EQ(file([] { DeleteFile("full"); }), folder.Path("full") + " (Directory not empty)");
    errno = EBUSY;  // of something else, before
    EXPECT_EQ(file([] { ReadFileBytes("full"); }), folder.Path("full"));
}

}  // namespace
}  // namespace quillon
