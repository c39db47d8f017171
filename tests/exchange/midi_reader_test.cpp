#include "exchange/midi_reader.h"

#include "midi/performance.h"
#include "music_text.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

/// What a tune's own MIDI file is read as.
std::string Heard(Tune& tune, int tempo = 120)
{
    SoundChoices choices;
    choices.Tempo = tempo;
    return EventText(
        ReadMidi(MidiFileBytes(tune, DefaultTunings(tune.NumStrings), choices)).at(0).Tune);
}

TEST(MidiReaderTest, ATunesOwnFileIsHeardAsItIsWritten)
{
    Tune tune;
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3");
    AddNote(tune, kEighth, 2, "1").Slot(3) = "0";
    AddNote(tune, kEighthRest);
    AddNote(tune, kSixteenth, 1, "0");
    AddNote(tune, kDottedEighth, 1, "2");
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kTripletEighth, 1, std::to_string(i));
    AddMeasure(tune);
    AddNote(tune, kHalf, 6, "1");
    const char* expected = "67:12 60,55:6 z:6 64:3 66:9 64:4 65:4 66:4 | 41:24";
    EXPECT_EQ(Heard(tune), expected);
    EXPECT_EQ(Heard(tune, 130), expected);  // whose ticks are rounded
}

TEST(MidiReaderTest, WhatSoundsOnIsTied)
{
    Tune tune;
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3").Slot(6) = "0^";
    AddNote(tune, kQuarter, 1, "5").Slot(6) = "0";
    EXPECT_EQ(Heard(tune), "67,40-:12 40,69:12");
}

TEST(MidiReaderTest, WhatIsNoSongIsRefused)
{
    for (const std::string& bytes : {std::string(), std::string("MThd"), std::string("RIFF"),
                                     std::string("MThd\0\0\0\6\0\1\0\1\xE7\x28", 14)})
        EXPECT_THROW(ReadMidi(bytes), ExchangeError);
    const std::string empty("MThd\0\0\0\6\0\1\0\1\0\x60MTrk\0\0\0\4\0\xFF\x2F\0", 26);
    EXPECT_TRUE(ReadMidi(empty).at(0).Tune.Measures.empty());
}

}  // namespace
}  // namespace quillon
