#include "midi/midi_file_writer.h"

#include "midi/midi_text.h"
#include "store/item_file.h"
#include "support/faults.h"
#include "support/temporary_directory.h"

#include <filesystem>

namespace quillon {
namespace {

using Events = std::vector<std::string>;

std::string Hex(const std::string& bytes)
{
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string hex;
    for (const char c : bytes) {
        hex += kDigits[static_cast<unsigned char>(c) >> 4];
        hex += kDigits[c & 0xF];
    }
    return hex;
}

TEST(MidiFileWriter, WritesTheHeaderTheTempoTrackAndTheNextTracks)
{
    MidiFileWriter writer;
    writer.BeginFile();
    writer.WriteTempo(500000);
    writer.SetDivision(120);
    writer.NextTrack();
    writer.WriteEvent(193, 25, 0, 0);
    writer.WriteEvent(145, 64, 100, 0);
    writer.WriteEvent(145, 64, 0, 120);
    writer.FinishTracks();
    EXPECT_EQ(Hex(writer.Bytes()), "4D546864"
                                   "00000006"
                                   "0001"
                                   "0002"
                                   "0078"
                                   "4D54726B"
                                   "0000000B"
                                   "00FF510307A120"
                                   "00FF2F00"
                                   "4D54726B"
                                   "0000000F"
                                   "00C119"
                                   "00914064"
                                   "78914000"
                                   "00FF2F00");
}

TEST(MidiFileWriter, BeginsAFreshFileEachTime)
{
    MidiFileWriter writer;
    writer.BeginFile();
    writer.WriteEvent(145, 64, 100, 0);
    writer.NextTrack();
    writer.BeginFile();
    writer.FinishTracks();
    const MidiText file = ReadMidi(writer.Bytes());
    ASSERT_EQ(file.Tracks.size(), 1u);
    EXPECT_EQ(file.Tracks[0], Events{"0 end"});
}

TEST(MidiFileWriter, WritesDeltasOfOneToFourBytes)
{
    MidiFileWriter writer;
    writer.BeginFile();
    Events expected;
    for (const int delta : {0, 127, 128, 16383, 16384, 2097151, 2097152, 0x0FFFFFFF}) {
        writer.WriteEvent(145, 64, 0, delta);
        expected.push_back(std::to_string(delta) + " 145 64 0");
    }
    writer.FinishTracks();
    expected.push_back("0 end");
    EXPECT_EQ(ReadMidi(writer.Bytes()).Tracks.at(0), expected);
}

TEST(MidiFileWriter, CannotHoldADeltaBeyond28Bits)
{
    MidiFileWriter writer;
    writer.BeginFile();
    EXPECT_FAULT(writer.WriteEvent(145, 64, 0, 0x10000000), Overflow);
}

TEST(MidiFileWriter, HoldsDataBytesTo0To127)
{
    MidiFileWriter writer;
    writer.BeginFile();
    writer.WriteEvent(193, 200, 0, 0);
    writer.WriteEvent(145, -3, 128, 5);
    writer.FinishTracks();
    EXPECT_EQ(ReadMidi(writer.Bytes()).Tracks.at(0), (Events{"0 193 127", "5 145 0 127", "0 end"}));
}

TEST(MidiFileWriter, PutsTheFileOnDiskOnlyWhenItIsComplete)
{
    const TemporaryDirectory folder;
    MidiFileWriter writer;
    writer.FileName = "tune.Mid";
    writer.BeginFile();
    writer.FinishTracks();
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
    writer.CloseFile();
    EXPECT_EQ(ReadFileBytes("tune.Mid"), writer.Bytes());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
}

TEST(MidiFileWriter, LeavesNoFileWhereItCannotWrite)
{
    const TemporaryDirectory folder;
    std::filesystem::create_directories("taken/inside");
    MidiFileWriter writer;
    for (const char* path : {"missing/tune.Mid", "taken"}) {
        writer.FileName = path;
        EXPECT_FAULT(writer.CloseFile(), PathFileAccess);
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
    EXPECT_TRUE(std::filesystem::exists("taken/inside"));
}

TEST(MidiFileWriter, DropsATrackThatIsNotEndedWhenAnotherFileBegins)
{
    MidiFileWriter writer;
    writer.BeginFile();
    writer.FinishTracks();
    const std::string empty = writer.Bytes();
    writer.BeginFile();
    writer.WriteEvent(145, 64, 100, 0);
    writer.BeginFile();
    writer.FinishTracks();
    EXPECT_EQ(writer.Bytes(), empty);
}

}  // namespace
}  // namespace quillon
