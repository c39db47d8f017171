#include "qt/sound_file.h"

#include "midi/practice.h"
#include "store/item_file.h"
#include "store/sign_codes.h"
#include "support/sounds.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace quillon {
namespace {

/// The pitch in Hz around 440, by the distance at which the sound is most like itself.
double Pitch(const std::vector<double>& samples, std::size_t from)
{
    double best = 0;
    std::size_t bestLag = 1;
    for (std::size_t lag = 90; lag <= 110; ++lag) {
        double sum = 0;
        for (std::size_t i = from; i < from + 4000; ++i)
            sum += samples.at(i) * samples.at(i + lag);
        if (sum > best) {
            best = sum;
            bestLag = lag;
        }
    }
    return 44100.0 / static_cast<double>(bestLag);
}

TEST(RenderSound, RendersTheTuneWithItsPitchAndTime)
{
    const TemporaryDirectory folder;
    double done = 0;
    RenderSound(Midi(10), "out.wav", "wav", [&](double part) {
        EXPECT_GE(part, done);
        done = part;
    });
    EXPECT_EQ(done, 1);
    const std::string wav = ReadFileBytes("out.wav");
    EXPECT_EQ(wav.substr(0, 4), "RIFF");
    const Sides sides = SidesOf(wav);
    EXPECT_NEAR(static_cast<double>(sides.Left.size()) / 44100, 2.5, 0.002);
    EXPECT_NEAR(Pitch(sides.Left, 44100 / 20), 440, 5);
}

TEST(RenderSound, ALoudTuneAndAFaintOneHaveTheSamePeak)
{
    const TemporaryDirectory folder;
    for (const std::string& midi : {Midi(3), ChordMidi()}) {
        RenderSound(midi, "out.wav", "wav");
        EXPECT_NEAR(20 * std::log10(Peak(SidesOf(ReadFileBytes("out.wav")))), -1, 0.01);
    }
}

TEST(RenderSound, TheLastNoteDiesAwayInTheTail)
{
    const TemporaryDirectory folder;
    RenderSound(Midi(1), "out.wav", "wav");
    const std::vector<double> left = SidesOf(ReadFileBytes("out.wav")).Left;
    const auto peak = [&](double from, double to) {
        return Peak({left.begin() + static_cast<int>(from * 44100),
                     left.begin() + static_cast<int>(to * 44100)});
    };
    EXPECT_GT(peak(0.25, 0.3), 0.005);  // after the note's end
    EXPECT_GT(peak(0.45, 0.5), 0.0005);
    EXPECT_LT(peak(0.69, 0.7), 0.0005);
}

TEST(RenderSound, ATuneOfRestsIsSilent)
{
    const TemporaryDirectory folder;
    Tune tune;
    AddMeasure(tune);
    AddNote(tune, kWholeRest);
    RenderSound(MidiOf(tune), "out.wav", "wav");
    EXPECT_LT(Peak(SidesOf(ReadFileBytes("out.wav"))), 0.001);
}

/// Repeats, endings, a D.S. al Coda, triplets, hammer-ons, and ties within a measure and over a
/// bar.
Tune TuneOfEverything()
{
    const std::array<std::vector<std::pair<int, const char*>>, 8> measures = {
        {
         {{kTripletEighth, "5"}, {kTripletEighth, "7"}, {kTripletEighth, "8"}, {kHalf, "5"}},
         {{kEighth, "3"}, {kDottedQuarter, "7"}, {kQuarterRest, ""}, {kQuarter, "8"}},
         {{kQuarter, "5^"}, {kQuarter, "5"}, {kQuarter, "8"}, {kQuarter, "3"}},
         {{kHalf, "7"}, {kHalf, "0^"}},
         {{kQuarter, "0"}, {kQuarter, "5-7"}, {kQuarter, "3"}, {kQuarter, "8"}},
         {{kTripletQuarter, "3"}, {kTripletQuarter, "5"}, {kTripletQuarter, "7"}, {kHalf, "5"}},
         {{kWhole, "12"}},
         {{kQuarter, "8"}, {kQuarter, "7"}, {kHalf, "5"}},
         }
    };
    Tune tune;
    std::vector<NoteRecord*> heads;
    for (const auto& notes : measures) {
        heads.push_back(&AddMeasure(tune));
        for (const auto& [code, cell] : notes)
            AddNote(tune, code, 2, cell);
    }
    heads[1]->BarCode = kRepeatStart;
    heads[1]->Slot(1) = kSign;
    heads[2]->Slot(2) = "1";
    heads[2]->BarCode = kRepeatEnd;
    heads[3]->Slot(2) = "2";
    heads[4]->Slot(3) = "/To Coda";
    heads[5]->Slot(1) = kDsAlCoda;
    heads[7]->Slot(1) = kCoda;
    return tune;
}

/// By how many seconds a note is heard later than told. Where none is heard: a second.
double LatenessOf(const std::vector<double>& samples, double told)
{
    const auto at = static_cast<std::size_t>(std::lround(told * 44100));
    const auto peak = [&](std::size_t from, std::size_t to) {
        double highest = 0;
        for (std::size_t i = from; i < to; ++i)
            highest = std::max(highest, std::fabs(samples.at(i)));
        return highest;
    };
    const double before = peak(at - 300, at - 150);
    const double after = peak(at, at + 1000);
    for (std::size_t i = at - 150; after > 2 * before && i < at + 1000; ++i)
        if (std::fabs(samples[i]) > before + 0.05 * after)
            return (static_cast<double>(i) - static_cast<double>(at)) / 44100;
    return 1;
}

TEST(RenderSound, PracticeIsHeardAtThePositionsTold)
{
    const TemporaryDirectory folder;
    Tune tune = TuneOfEverything();
    const Sound sound{
        97, 12, {64, 59, 55, 50, 45, 40}  // a marimba: its notes begin at once and die away soon
    };
    const PracticeTrack track =
        MakePractice(tune, sound, AllOf(PositionsOf(tune, sound)),
                     {.Speed = 70, .StepUp = 20, .Turns = 2, .CountIn = true});
    RenderSound(track.Midi, "out.wav", "wav");
    const std::vector<double> heard = SidesOf(ReadFileBytes("out.wav")).Left;
    int notes = 0;
    for (const ColumnPlace& column : track.Positions.Columns) {
        const NoteRecord& before = tune[column.Record - 1];
        const bool tied = before.Slot(2) == "5^" || tune[column.Record - 2].Slot(2) == "0^";
        if (tune[column.Record].Slot(2).empty() || tied)
            continue;
        ++notes;
        EXPECT_NEAR(LatenessOf(heard, track.Positions.SecondsAt(column.Begin)), 0, 0.002)
            << "record " << column.Record;
    }
    EXPECT_EQ(notes, 2 * 39);
}

TEST(RenderSound, CompressedFilesAreOfTheirKind)
{
    const TemporaryDirectory folder;
    RenderSound(Midi(5), "out.ogg", "ogg");
    RenderSound(Midi(5), "out.mp3", "mp3");
    EXPECT_EQ(ReadFileBytes("out.ogg").substr(0, 4), "OggS");
    const std::string mp3 = ReadFileBytes("out.mp3");
    const bool isMp3 = mp3.starts_with("ID3") || mp3.starts_with("\xFF\xFB");
    EXPECT_TRUE(isMp3);
}

TEST(RenderSound, LeavesNoFileWhereItCannotBegin)
{
    const TemporaryDirectory folder;
    EXPECT_THROW(RenderSound("a tune", "out.wav", "wav"), std::runtime_error);
    EXPECT_THROW(RenderSound(Midi(1), "missing/out.wav", "wav"), std::runtime_error);
    MidiFileWriter days;
    days.BeginFile();
    days.SetDivision(1);
    days.WriteTempo(500000, 100000);
    days.FinishTracks();
    EXPECT_THROW(RenderSound(days.Bytes(), "out.wav", "wav"), std::runtime_error);
    setenv("QUILLON_SOUNDFONT", "missing.sf2", 1);
    EXPECT_THROW(RenderSound(Midi(1), "out.wav", "wav"), std::runtime_error);
    unsetenv("QUILLON_SOUNDFONT");
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(RenderSound, TellsWhyItFails)
{
    const TemporaryDirectory folder;
    std::filesystem::create_symlink("/dev/full", "full");
    const auto reason = [](const std::string& path, const std::string& format) {
        try {
            RenderSound(Midi(1), path, format);
        } catch (const std::system_error& failure) {
            return failure.code().value();
        }
        return 0;
    };
    for (const char* format : {"wav", "ogg", "mp3"}) {
        EXPECT_EQ(reason("missing/out", format), ENOENT) << format;
        EXPECT_EQ(reason("full", format), ENOSPC) << format;
    }
}

}  // namespace
}  // namespace quillon
