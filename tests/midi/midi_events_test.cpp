#include "midi/midi_events.h"

#include "midi/midi_file_writer.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(TimedEvents, TracksAreReadTogetherInTheTimeOfTheTempos)
{
    MidiFileWriter writer;
    writer.BeginFile();
    writer.SetDivision(100);
    writer.WriteTempo(600000);
    writer.WriteTempo(300000, 200);
    writer.WriteTempo(300000, 300);
    writer.NextTrack();
    writer.WriteEvent(193, 25, 0, 0);
    writer.WriteEvent(145, 64, 100, 100);
    writer.WriteEvent(145, 64, 0, 200);
    writer.NextTrack();
    writer.WriteEvent(194, 25, 0, 0);
    writer.WriteEvent(146, 59, 90, 200);
    writer.FinishTracks();
    const TimedEvents timed = TimedEventsOf(writer.Bytes());
    ASSERT_EQ(timed.Events.size(), 5u);
    EXPECT_EQ(timed.Events[0].Status, 193);
    EXPECT_EQ(timed.Events[1].Status, 194);
    EXPECT_DOUBLE_EQ(timed.Events[2].Seconds, 0.6);
    EXPECT_EQ(timed.Events[2].Data1, 64);
    EXPECT_EQ(timed.Events[2].Data2, 100);
    EXPECT_DOUBLE_EQ(timed.Events[3].Seconds, 1.2);
    EXPECT_EQ(timed.Events[3].Data1, 59);
    EXPECT_DOUBLE_EQ(timed.Events[4].Seconds, 1.5);
    EXPECT_DOUBLE_EQ(timed.End, 2.1);  // the last tempo
}

TEST(TimedEvents, OtherBytesHoldWhateverCanBeRead)
{
    EXPECT_TRUE(TimedEventsOf("").Events.empty());
    EXPECT_TRUE(TimedEventsOf("MThd and no more").Events.empty());
    EXPECT_EQ(TimedEventsOf("MThd00000000\0\x64MTrk9999\0").End, 0);
    EXPECT_NO_THROW(TimedEventsOf("This is text, and longer than a header with a track in it."));
}

TEST(TimedEvents, AFileWithoutADivisionHasNoTimes)
{
    MidiFileWriter writer;
    writer.BeginFile();
    writer.SetDivision(0);
    writer.NextTrack();
    writer.WriteEvent(145, 64, 100, 100);
    writer.FinishTracks();
    const TimedEvents timed = TimedEventsOf(writer.Bytes());
    EXPECT_TRUE(timed.Events.empty());
    EXPECT_EQ(timed.End, 0);
}

TEST(TimedEvents, WithoutATempoAQuarterLastsHalfASecond)
{
    MidiFileWriter writer;
    writer.BeginFile();
    writer.SetDivision(1);
    writer.WriteEvent(193, 25, 99, 1);
    writer.FinishTracks();
    const TimedEvents timed = TimedEventsOf(writer.Bytes());
    ASSERT_EQ(timed.Events.size(), 1u);
    EXPECT_DOUBLE_EQ(timed.Events[0].Seconds, 0.5);
    EXPECT_EQ(timed.Events[0].Data1, 25);
    EXPECT_EQ(timed.Events[0].Data2, 0) << "the message has one data byte";
}

TEST(TimedEvents, TheFastestTempoCountsAndATempoOf0DoesNot)
{
    for (const auto& [tempo, seconds] : {std::pair(1, 0.5e-4), std::pair(0, 25.0)}) {
        MidiFileWriter writer;
        writer.BeginFile();
        writer.SetDivision(1);
        writer.WriteTempo(tempo);
        writer.WriteTempo(tempo, 50);
        writer.FinishTracks();
        EXPECT_DOUBLE_EQ(TimedEventsOf(writer.Bytes()).End, seconds) << tempo;
    }
}

}  // namespace
}  // namespace quillon
