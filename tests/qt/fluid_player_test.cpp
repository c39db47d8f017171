// Playing with the real synthesizer, into sound files. The driver "file" plays in real time, so the
// tunes are short.

#include "qt/fluid_player.h"

#include "qt/midi_ports.h"
#include "store/item_file.h"
#include "support/faults.h"
#include "support/sounds.h"
#include "support/temporary_directory.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <sys/resource.h>

#include <chrono>
#include <csignal>

namespace quillon {
namespace {

void Wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

class FluidPlayerTest : public testing::Test {
protected:
    FluidPlayerTest()
    {
        qputenv("QUILLON_AUDIO_DRIVER", "file");
        qputenv("QUILLON_AUDIO_FILE", "played.wav");
        player.OnEnd = [this] {
            ++ends;
            listener = QThread::currentThread();
        };
    }

    void Load(int quarters)
    {
        WriteFileBytes("tune.mid", Midi(quarters));
        player.Load("tune.mid");
    }

    /// Milliseconds until the end is told, at most `atMost`.
    qint64 TimeToEnd(int atMost)
    {
        const int before = ends;
        QElapsedTimer timer;
        timer.start();
        while (ends == before && timer.elapsed() < atMost)
            Wait(10);
        return timer.elapsed();
    }

    /// Of the file that is being played into.
    static double SecondsPlayed()
    {
        return static_cast<double>(std::filesystem::file_size("played.wav")) / (44100 * 4);
    }

    /// The tick is that of the sound at this moment, within 50 ms.
    void ExpectInStep(double tempoFactor)
    {
        const double before = SecondsPlayed();
        const double heard = player.TickHeard() / (300 * 300 / 60.0 * tempoFactor);
        EXPECT_GT(heard, before - 0.05);
        EXPECT_LT(heard, SecondsPlayed() + 0.05);
    }

    TemporaryDirectory folder;
    FluidPlayer player{std::chrono::milliseconds(500)};
    int ends = 0;
    QThread* listener = nullptr;
};

TEST_F(FluidPlayerTest, TellsTheEndOfATuneOnTheWindowsThread)
{
    ASSERT_TRUE(player.Init());
    EXPECT_FALSE(player.HasTune());
    Load(2);
    EXPECT_TRUE(player.HasTune());
    player.Play(false);
    const qint64 time = TimeToEnd(3000);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(listener, QThread::currentThread());
    EXPECT_GE(time, 300);
    EXPECT_LE(time, 1500);
}

TEST_F(FluidPlayerTest, TellsTheTickThatIsHeardWithin50Milliseconds)
{
    ASSERT_TRUE(player.Init());
    EXPECT_EQ(player.TickHeard(), 0);
    player.LoadBytes(Midi(10));
    player.Play(false);
    for (int i = 0; i < 10; ++i) {
        Wait(70);
        ExpectInStep(1);
    }
}

TEST_F(FluidPlayerTest, WhatPlaysForEverCountsItsTicksAnewEachTime)
{
    constexpr int kTicksOfTune = 3 * 300;
    ASSERT_TRUE(player.Init());
    player.LoadBytes(Midi(3));
    player.Play(true);
    int highest = 0;
    int turns = 0;
    for (int i = 0, before = 0; i < 70; ++i) {
        Wait(20);
        const int tick = player.TickHeard();
        turns += tick < before;
        highest = std::max(highest, tick);
        before = tick;
    }
    EXPECT_GE(turns, 2);
    EXPECT_GT(highest, kTicksOfTune * 3 / 4);
    EXPECT_LT(highest, kTicksOfTune + 100);
}

TEST_F(FluidPlayerTest, TheTickKeepsUpWithTheTempoFactor)
{
    ASSERT_TRUE(player.Init());
    player.LoadBytes(Midi(20));
    player.Play(false);
    player.SetTempoFactor(2);
    Wait(500);
    ExpectInStep(2);
    player.SetTempoFactor(0);
    const int paused = player.TickHeard();
    Wait(100);
    EXPECT_NEAR(player.TickHeard(), paused, 30);
}

TEST_F(FluidPlayerTest, SaysWhyThereIsNoSound)
{
    qputenv("QUILLON_AUDIO_DRIVER", "none");
    EXPECT_FALSE(player.Init());
    EXPECT_EQ(player.Trouble(), "No sound device can be opened.");
    qputenv("QUILLON_SOUNDFONT", "missing.sf2");
    EXPECT_FALSE(player.Init());
    EXPECT_EQ(player.Trouble(), "The SoundFont cannot be read.");
    qunsetenv("QUILLON_SOUNDFONT");
}

TEST_F(FluidPlayerTest, PlaysAgainAtOnceAfterTheEnd)
{
    ASSERT_TRUE(player.Init());
    Load(1);
    for (int i = 1; i <= 3; ++i) {
        player.Play(false);
        TimeToEnd(2000);
        EXPECT_EQ(ends, i);
    }
}

TEST_F(FluidPlayerTest, StartsAgainWhileItPlays)
{
    ASSERT_TRUE(player.Init());
    Load(2);
    player.Play(false);
    Wait(200);
    player.Stop();
    player.Play(false);
    EXPECT_GE(TimeToEnd(2000), 300);
    Wait(300);
    EXPECT_EQ(ends, 1);
}

TEST_F(FluidPlayerTest, TellsNothingAfterStopOrWhenItPlaysForEver)
{
    ASSERT_TRUE(player.Init());
    Load(1);
    player.Play(false);
    player.Stop();
    Wait(400);
    player.Play(true);
    Wait(700);
    EXPECT_EQ(ends, 0);
}

TEST_F(FluidPlayerTest, TempoFactorActsAtOnceAnd0StandsStill)
{
    ASSERT_TRUE(player.Init());
    Load(2);
    player.Play(false);
    player.SetTempoFactor(0);
    Wait(800);
    EXPECT_EQ(ends, 0);
    player.SetTempoFactor(3);
    TimeToEnd(1000);
    EXPECT_EQ(ends, 1);
}

TEST_F(FluidPlayerTest, TheLowestVolumeIsFaintButNotSilent)
{
    ASSERT_TRUE(player.Init());
    Load(2);
    player.SetVolume(-2500);
    player.Play(false);
    TimeToEnd(2000);
    player.Close();
    const double peak = Peak(SidesOf(ReadFileBytes("played.wav")));
    EXPECT_GT(peak, 0.0005);
    EXPECT_LT(peak, 0.02);
}

TEST_F(FluidPlayerTest, HighStringsAreOnTheRightAndLowOnesOnTheLeftInEachTurnOfALoop)
{
    for (const int string : {1, 6}) {
        ASSERT_TRUE(player.Init());
        WriteFileBytes("tune.mid", Midi(1, string));
        player.Load("tune.mid");
        player.Play(true);
        Wait(450);
        player.Close();
        const Sides played = SidesOf(ReadFileBytes("played.wav"));
        const auto half = static_cast<std::ptrdiff_t>(played.Left.size() / 2);
        for (const bool second : {false, true}) {
            const double balance =
                Energy(played.Right, second ? half : 0) / Energy(played.Left, second ? half : 0);
            EXPECT_GT(string == 1 ? balance : 1 / balance, 1.5) << string << second;
        }
    }
}

TEST_F(FluidPlayerTest, AChordOfAllStringsIsLoudButNotClipped)
{
    ASSERT_TRUE(player.Init());
    WriteFileBytes("tune.mid", ChordMidi());
    player.Load("tune.mid");
    player.SetVolume(200);  // the highest
    player.Play(false);
    TimeToEnd(2000);
    player.Close();
    const double peak = Peak(SidesOf(ReadFileBytes("played.wav")));
    EXPECT_GT(peak, 0.3);
    EXPECT_LT(peak, 0.99);
}

TEST_F(FluidPlayerTest, TunesCanBeLoadedOneAfterTheOtherWhilePlaying)
{
    ASSERT_TRUE(player.Init());
    for (int i = 0; i < 50; ++i) {
        Load(1);
        player.Play(true);
    }
    player.Close();
    EXPECT_FALSE(player.HasTune());
    EXPECT_TRUE(player.Init());
}

TEST_F(FluidPlayerTest, WithoutASoundDeviceThereIsNoPlayer)
{
    qputenv("QUILLON_AUDIO_DRIVER", "none");
    EXPECT_FALSE(player.Init());
}

TEST_F(FluidPlayerTest, WithoutASoundFontThereIsNoPlayer)
{
    qputenv("QUILLON_SOUNDFONT", "missing.sf2");
    EXPECT_FALSE(player.Init());
    qunsetenv("QUILLON_SOUNDFONT");
}

TEST_F(FluidPlayerTest, ASoundDeviceThatIsGoneIsTold)
{
    int failures = 0;
    player.OnFailure = [&] { ++failures; };
    ASSERT_TRUE(player.Init());
    qputenv("QUILLON_AUDIO_DRIVER", "none");
    Load(1);
    player.Play(false);
    EXPECT_EQ(failures, 0);
    Wait(10);
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(ends, 0);
}

/// Fails whoever writes a file beyond `bytes`, as a full disk does.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*handler)(int);
    rlimit before{};
};

TEST_F(FluidPlayerTest, ASoundThreadThatEndsWhileItPlaysIsToldOnceAndTheNextPlayHasANewOne)
{
    int failures = 0;
    player.OnFailure = [&] { ++failures; };
    ASSERT_TRUE(player.Init());
    Load(20);
    {
        const FileSizeLimit limit(100000);  // half a second of sound
        player.Play(true);
        Wait(2000);
    }
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(ends, 0);
    player.Stop();
    Load(1);
    player.Play(false);
    TimeToEnd(3000);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(failures, 1);
}

TEST_F(FluidPlayerTest, ASoundThreadThatHasEndedIsReplacedWhenItIsPlayedAgain)
{
    int failures = 0;
    player.OnFailure = [&] { ++failures; };
    ASSERT_TRUE(player.Init());
    Load(2);
    {
        const FileSizeLimit limit(50000);
        Wait(500);  // nothing is played yet, so nothing is told
        EXPECT_EQ(failures, 0);
        player.Play(false);
        Wait(800);
    }
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(ends, 0);
    player.Stop();
    player.Play(false);
    TimeToEnd(3000);
    EXPECT_EQ(ends, 1);
}

TEST_F(FluidPlayerTest, AMidiFileThatCannotBePlayedIsTold)
{
    int failures = 0;
    player.OnFailure = [&] { ++failures; };
    ASSERT_TRUE(player.Init());
    WriteFileBytes("broken.mid", "MThd and no more");
    player.Load("broken.mid");
    player.Play(false);
    Wait(800);
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(ends, 0);
}

TEST_F(FluidPlayerTest, ATuneThatStandsStillOrLoopsOrHasBeenStoppedIsNoFailure)
{
    int failures = 0;
    player.OnFailure = [&] { ++failures; };
    ASSERT_TRUE(player.Init());
    Load(1);
    player.Play(true);
    Wait(800);
    player.SetTempoFactor(0);
    Wait(800);
    player.SetTempoFactor(0.1);
    Wait(800);
    player.Stop();
    Wait(800);
    EXPECT_EQ(failures, 0);
}

int Entries(const char* folder)
{
    int entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder))
        ++entries;
    return entries;
}

TEST_F(FluidPlayerTest, ThreadsAndHandlesStayTheSameOverManyBuildsAndPlays)
{
    const auto play = [this] {
        EXPECT_TRUE(player.Init());
        Load(1);
        player.Play(true);
    };
    play();
    Wait(50);
    const int threads = Entries("/proc/self/task");
    const int handles = Entries("/proc/self/fd");
    for (int i = 0; i < 50; ++i)
        play();
    Wait(50);  // a thread that has been waited for may still be listed
    EXPECT_EQ(Entries("/proc/self/task"), threads);
    EXPECT_EQ(Entries("/proc/self/fd"), handles);
}

TEST_F(FluidPlayerTest, AFileThatIsNoMidiFileIsAFault)
{
    ASSERT_TRUE(player.Init());
    EXPECT_FAULT(player.Load("missing.mid"), FileNotFound);
    WriteFileBytes("text.mid", "a tune");
    EXPECT_FAULT(player.Load("text.mid"), PathFileAccess);
    EXPECT_FALSE(player.HasTune());
}

TEST_F(FluidPlayerTest, NothingHappensBeforeInit)
{
    player.Play(false);
    player.Stop();
    player.SetTempoFactor(0);
    player.SetVolume(-2500);
    EXPECT_FALSE(player.HasTune());
}

TEST(RtMidiPorts, AlwaysNamesTheDefaultDevice)
{
    const RtMidiPorts ports;
    EXPECT_GE(ports.Count(), 0);
    EXPECT_FALSE(ports.Name(-1).empty());
}

}  // namespace
}  // namespace quillon

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
