#include "qt/sound_file.h"

#include "midi/midi_events.h"
#include "store/item_file.h"
#include "support/sounds.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

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
