#include "store/tunings.h"

#include "support/faults.h"
#include "support/temporary_directory.h"

#include <filesystem>
#include <sys/stat.h>

namespace quillon {
namespace {

using Pitches = std::array<Int16, kStringSlots>;

class TuningsTest : public testing::Test {
protected:
    TemporaryDirectory folder;
    Tunings tunings;
};

TEST_F(TuningsTest, AMissingFileIsMadeWithTheDefaultRows)
{
    EXPECT_EQ(LoadTunings("Strings6.tun", 6, tunings), 4);
    EXPECT_EQ(ReadFileBytes("Strings6.tun"), "\"Standard\",64,59,55,50,45,40\r\n"
                                             "\"Dropped D\",64,59,55,50,45,38\r\n"
                                             "\"Open D\",62,57,54,50,45,38\r\n"
                                             "\"G Tuning\",64,59,55,50,43,38\r\n");
    EXPECT_EQ(tunings[3].TuningName, "G Tuning");
    EXPECT_EQ(tunings[3].Pitches, (Pitches{64, 59, 55, 50, 43, 38}));
}

TEST_F(TuningsTest, DefaultRowsOf5And4Strings)
{
    RebuildTuningFile("Strings5.tun", 5);
    EXPECT_EQ(ReadFileBytes("Strings5.tun"), "\"G Tuning\",62,59,55,50,67\r\n"
                                             "\"C Tuning\",62,59,55,48,67\r\n"
                                             "\"D Tuning\",62,57,54,50,66\r\n");
    RebuildTuningFile("Strings4.tun", 4);
    EXPECT_EQ(ReadFileBytes("Strings4.tun"), "\"Mandolin\",76,69,62,55\r\n"
                                             "\"Bass\",43,38,33,28\r\n"
                                             "\"Tenor Banjo\",69,62,55,48\r\n"
                                             "\"Plectrum Banjo\",62,59,55,48\r\n"
                                             "\"Ukulele\",71,66,62,57\r\n"
                                             "\"Baritone Uke\",64,59,55,50\r\n");
}

TEST_F(TuningsTest, PitchesAboveTheStringsOfTheInstrumentStayAsTheyWere)
{
    tunings[0].Pitch(5) = 99;
    LoadTunings("Strings4.tun", 4, tunings);
    EXPECT_EQ(tunings[0].Pitches, (Pitches{76, 69, 62, 55, 99, 0}));
}

TEST_F(TuningsTest, AFileThatEndsWithinARowIsReplacedByTheDefaultRows)
{
    WriteFileBytes("Strings5.tun", "\"Mine\",62,59,55,50,67\r\n\"Half\",62,59");
    EXPECT_EQ(LoadTunings("Strings5.tun", 5, tunings), 3);
    EXPECT_EQ(tunings[0].TuningName, "G Tuning");
}

TEST_F(TuningsTest, ANumberBeyond16BitsReplacesTheFileToo)
{
    WriteFileBytes("Strings5.tun", "\"Mine\",62,59,55,50,40000\r\n");
    EXPECT_EQ(LoadTunings("Strings5.tun", 5, tunings), 3);
}

TEST_F(TuningsTest, APipeInPlaceOfTheFileIsAnAccessErrorAtOnce)
{
    ASSERT_EQ(mkfifo("Strings5.tun", 0600), 0);
    EXPECT_FAULT(LoadTunings("Strings5.tun", 5, tunings), PathFileAccess);
}

TEST_F(TuningsTest, TheListHolds51RowsAndA52ndIsASubscriptFault)
{
    std::string rows;
    for (int i = 0; i < 51; ++i)
        rows += "\"T\",1,2,3,4\r\n";
    WriteFileBytes("Strings4.tun", rows);
    EXPECT_EQ(LoadTunings("Strings4.tun", 4, tunings), 51);
    rows += "\"T\",1,2,3,4\r\n";
    WriteFileBytes("Strings4.tun", rows);
    EXPECT_FAULT(LoadTunings("Strings4.tun", 4, tunings), SubscriptOutOfRange);
    EXPECT_EQ(ReadFileBytes("Strings4.tun"), rows);
}

TEST_F(TuningsTest, TheActiveTuningOf6StringsIsTheFirstRow)
{
    EXPECT_TRUE(LoadActiveTuning("Strings6.tun", 6, tunings));
    EXPECT_EQ(tunings.CurTuning, (Pitches{64, 59, 55, 50, 45, 40}));
    EXPECT_FALSE(LoadActiveTuning("Strings6.tun", 6, tunings));
}

TEST_F(TuningsTest, TheActiveTuningOf5StringsReadsOnIntoTheNextName)
{
    RebuildTuningFile("Strings5.tun", 5);
    LoadActiveTuning("Strings5.tun", 5, tunings);
    EXPECT_EQ(tunings.CurTuning, (Pitches{62, 59, 55, 50, 67, 0}));
}

TEST_F(TuningsTest, TheActiveTuningOf4StringsReadsOnIntoTheNextPitch)
{
    RebuildTuningFile("Strings4.tun", 4);
    LoadActiveTuning("Strings4.tun", 4, tunings);
    EXPECT_EQ(tunings.CurTuning, (Pitches{76, 69, 62, 55, 0, 43}));
}

TEST_F(TuningsTest, ASingleTuningLeftOf5Or4StringsBringsTheDefaultRowsBack)
{
    WriteFileBytes("Strings5.tun", "\"Mine\",1,2,3,4,5\r\n");
    EXPECT_TRUE(LoadActiveTuning("Strings5.tun", 5, tunings));
    EXPECT_EQ(tunings[0].TuningName, "G Tuning");
    WriteFileBytes("Strings4.tun", "\"Mine\",1,2,3,4\r\n");
    EXPECT_TRUE(LoadActiveTuning("Strings4.tun", 4, tunings));
    EXPECT_EQ(LoadTunings("Strings4.tun", 4, tunings), 6);
}

TEST_F(TuningsTest, WriteTakesTheFirstRowsWithThePitchesOfTheStrings)
{
    WriteTunings("some.tun", DefaultTunings(6), 2, 4);
    EXPECT_EQ(ReadFileBytes("some.tun"),
              "\"Standard\",64,59,55,50\r\n\"Dropped D\",64,59,55,50\r\n");
}

TEST_F(TuningsTest, AFileThatCannotBeMadeIsAPathFault)
{
    EXPECT_FAULT(LoadTunings("missing/Strings6.tun", 6, tunings), PathFileAccess);
}

}  // namespace
}  // namespace quillon
