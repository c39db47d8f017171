#include "store/tune_file.h"

#include "support/faults.h"
#include "support/tunes.h"

#include <algorithm>
#include <vector>

namespace quillon {
namespace {

Tune Read(const std::string& bytes)
{
    Tune tune;
    ItemReader reader(bytes);
    ReadTune(reader, tune);
    return tune;
}

std::string Bytes(const NoteRecord& record)
{
    ItemWriter writer;
    WriteRecord(writer, record);
    return writer.Bytes();
}

/// Header, one measure, two notes; texts and marks in all places.
Tune SmallTune()
{
    Tune tune;
    tune[0].ChordText = "A tune, no quotes";
    tune[0].Slot(6) = "Arial";
    AddMeasure(tune).Slot(2) = "1.";
    AddNote(tune, kQuarter, 2, "3").LeftHand = 'p';
    AddNote(tune, kEighth, 6, "12^").ChordText = "Am";
    return tune;
}

long LinesIn(const std::string& bytes)
{
    return std::count(bytes.begin(), bytes.end(), '\n');
}

TEST(TuneFile, WritesAHeadAndANoteAsEighteenLines)
{
    Tune tune;
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kQuarter, 2, "3");
    note.XPos = 48;
    note.Spacing = 4;
    EXPECT_EQ(Bytes(tune[1]) + Bytes(tune[2]), "1,999,0\r\n0,4,4,0\r\n0,\"\",\" \",\" \",\"\"\r\n"
                                               "\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n"
                                               "1,7,48\r\n0,4,4,4\r\n0,\"\",\" \",\" \",\"\"\r\n"
                                               "\"\"\r\n\"3\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n");
}

TEST(TuneFile, WritesBeatUnitBeforeBeats)
{
    Tune tune;
    EXPECT_EQ(Bytes(AddMeasure(tune, 6, 8)).substr(0, 18), "1,999,0\r\n0,8,6,0\r\n");
}

TEST(TuneFile, OfAnEmptyTuneIsExactlyTheNineLinesOfTheHeader)
{
    EXPECT_EQ(TuneBytes(Tune()), "0,0,0\r\n0,0,0,0\r\n0,\"\",\" \",\" \",\"\"\r\n"
                                 "\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n\"\"\r\n");
}

TEST(TuneFile, HoldsTheHeaderThoughItsMeasureIs0AndNoOtherRecordOfMeasure0)
{
    Tune tune = SmallTune();
    tune[2].Measure = 0;
    const std::string bytes = TuneBytes(tune);
    EXPECT_EQ(LinesIn(bytes), 3 * 9);
    EXPECT_EQ(bytes.find("0,0,0\r\n"), 0U);
}

TEST(TuneFile, ClosesTheGapOfALostRecordOnTheNextLoad)
{
    Tune tune = SmallTune();
    tune[2].Measure = 0;
    const Tune back = Read(TuneBytes(tune));
    EXPECT_EQ(back.LastNote, 2);
    EXPECT_EQ(RecordText(back[2]), RecordText(tune[3]));
}

TEST(TuneFile, SavesNoRecordWithANegativeMeasure)
{
    Tune tune = SmallTune();
    tune[2].Measure = -1;
    EXPECT_EQ(LinesIn(TuneBytes(tune)), 3 * 9);
}

TEST(TuneFile, LeavesOutWhatStandsAboveLastNote)
{
    Tune tune = SmallTune();
    tune.LastNote = 2;
    EXPECT_EQ(Read(TuneBytes(tune)).LastNote, 2);
}

TEST(TuneFile, ComesBackWithAllFields)
{
    const Tune tune = SmallTune();
    const Tune back = Read(TuneBytes(tune));
    EXPECT_EQ(TableText(back), TableText(tune));
    EXPECT_EQ(back.LastNote, 3);
    EXPECT_EQ(back.LastMeas, 1);
}

TEST(TuneFile, ReadThenWrittenGivesTheSameBytesForAThousandTunes)
{
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        const std::string bytes = TuneBytes(RandomTune(random, 40));
        ASSERT_EQ(TuneBytes(Read(bytes)), bytes) << "tune " << i;
    }
}

TEST(TuneFile, WithAQuoteInTheTitleComesBackShortened)
{
    Tune tune = SmallTune();
    tune[0].ChordText = "The \"old\" tune";
    const Tune back = Read(TuneBytes(tune));
    EXPECT_EQ(back[0].ChordText, "The ");
    EXPECT_EQ(back.LastNote, 3);
}

TEST(TuneFile, WithAQuoteAndACommaInTheTitleFailsOnLoading)
{
    Tune tune = SmallTune();
    tune[0].ChordText = "The \"old, tune";
    EXPECT_FAULT(Read(TuneBytes(tune)), InputPastEnd);
}

TEST(TuneFile, ReadsAQuotedTextWhereANumberIsDueAs0AndGoesOn)
{
    std::string bytes = TuneBytes(SmallTune());
    const std::size_t head = bytes.find("1,999,0");
    bytes.replace(head, 7, "1,\"999\",\"x\"");
    const Tune tune = Read(bytes);
    EXPECT_EQ(tune[1].Measure, 1);
    EXPECT_EQ(tune[1].NoteCode, 0);
    EXPECT_EQ(tune[1].XPos, 0);
    EXPECT_EQ(tune[1].Beats, 4);
    EXPECT_EQ(tune.LastNote, 3);
}

TEST(TuneFile, CutsAndFillsMarksToOneCharacter)
{
    std::string bytes = TuneBytes(Tune());
    bytes.replace(bytes.find("\" \",\" \""), 7, "\"pim\",\"\"");
    const Tune tune = Read(bytes);
    EXPECT_EQ(tune[0].LeftHand, 'p');
    EXPECT_EQ(tune[0].RightHand, ' ');
}

TEST(TuneFile, MayEndWithoutALineEnd)
{
    std::string bytes = TuneBytes(SmallTune());
    const Tune whole = Read(bytes);
    bytes.resize(bytes.size() - 2);
    EXPECT_EQ(TableText(Read(bytes)), TableText(whole));
    EXPECT_EQ(Read(bytes).LastNote, 3);
}

TEST(TuneFile, ReadsLoneCrAndLoneLfAlike)
{
    const std::string bytes = TuneBytes(SmallTune());
    std::string withCr, withLf;
    for (char c : bytes) {
        if (c != '\n')
            withCr += c;
        if (c != '\r')
            withLf += c;
    }
    EXPECT_EQ(TableText(Read(withCr)), TableText(Read(bytes)));
    EXPECT_EQ(TableText(Read(withLf)), TableText(Read(bytes)));
}

TEST(TuneFile, EndingAfterLine5OfARecordIsInputPastEnd)
{
    std::string bytes = TuneBytes(SmallTune());
    std::size_t end = 0;
    for (int line = 0; line < 9 + 9 + 5; ++line)
        end = bytes.find('\n', end) + 1;
    Tune tune;
    ItemReader reader(bytes.substr(0, end));
    EXPECT_FAULT(ReadTune(reader, tune), InputPastEnd);
    EXPECT_EQ(tune.LastNote, 1) << "tells how far it came";
}

// A cut is harmless only at a record's end, where the last text's closing quote and line end may
// be missing.
TEST(TuneFile, CutAnywhereEitherEndsWithARecordOrIsInputPastEnd)
{
    const std::string bytes = TuneBytes(SmallTune());
    std::vector<std::size_t> lastItems;  // where the last line of each record starts
    for (std::size_t at = 0, line = 1; at < bytes.size(); at = bytes.find('\n', at) + 1, ++line)
        if (line % 9 == 0)
            lastItems.push_back(at);
    int record = -1;  // complete so far
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const auto next = static_cast<std::size_t>(record + 1);
        if (next < lastItems.size() && length > lastItems[next])
            ++record;
        const std::size_t end =
            record < 0 ? 0 : bytes.find('\n', lastItems[static_cast<std::size_t>(record)]) + 1;
        Tune tune;
        ItemReader reader(bytes.substr(0, length));
        if (length <= end) {
            ASSERT_NO_THROW(ReadTune(reader, tune)) << length;
            EXPECT_EQ(tune.LastNote, std::max(record, 0)) << length;
        } else {
            EXPECT_FAULT(ReadTune(reader, tune), InputPastEnd);
        }
    }
    EXPECT_EQ(record, 3);
}

TEST(TuneFile, Holds1501RecordsAndNotOneMore)
{
    Tune tune;
    tune.LastNote = kLastRecord;
    for (int i = 1; i <= kLastRecord; ++i)
        tune[i].Measure = 1;
    const std::string bytes = TuneBytes(tune);
    EXPECT_EQ(Read(bytes).LastNote, kLastRecord);
    EXPECT_FAULT(Read(bytes + Bytes(tune[1])), SubscriptOutOfRange);
}

TEST(TuneFile, WithANumberPastSixteenBitsIsAnOverflow)
{
    for (const char* number : {"32768", "-32769", "123456789012"}) {
        std::string bytes = TuneBytes(SmallTune());
        bytes.replace(bytes.find("999"), 3, number);
        EXPECT_FAULT(Read(bytes), Overflow);
    }
}

TEST(TuneFile, ThatIsEmptyReadsNoRecord)
{
    Tune tune;
    tune.LastNote = 5;
    ItemReader reader("");
    ReadTune(reader, tune);
    EXPECT_EQ(tune.LastNote, 5);
}

TEST(ScratchFile, HoldsTheRecordsOfARangeWithoutAHeader)
{
    const Tune tune = SmallTune();
    EXPECT_EQ(RecordBytes(tune, 2, 3), Bytes(tune[2]) + Bytes(tune[3]));
}

TEST(ScratchFile, HoldsEmptyRecordsToo)
{
    EXPECT_EQ(LinesIn(RecordBytes(Tune(), 5, 6)), 18);
}

TEST(ScratchFile, OfAnEmptyRangeIsEmpty)
{
    EXPECT_EQ(RecordBytes(SmallTune(), 4, 3), "");
}

TEST(ScratchFile, PastTheTableIsASubscriptFault)
{
    EXPECT_FAULT(RecordBytes(Tune(), 1500, 1501), SubscriptOutOfRange);
}

}  // namespace
}  // namespace quillon
