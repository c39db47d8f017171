// Playing from the strip, with a player of the test's own: what is played, the band, the part of
// the pages in view, and what the described form keeps.

#include "qt/hearing.h"

#include "qt/paint.h"
#include "store/sign_codes.h"
#include "support/desk.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>

namespace quillon {
namespace {

/// A player on the strip that plays nothing, but tells where it would be.
class ScriptedPlayer : public FakePlayer {
public:
    bool Works = true;
    bool FailsToLoad = false;

    bool Init() override
    {
        FakePlayer::Init();
        return Works;
    }

    void LoadBytes(const std::string& midi) override
    {
        FakePlayer::LoadBytes(midi);
        if (FailsToLoad)
            throw Fault(Error::PathFileAccess, "The file is not a MIDI file.");
    }

    int Count(const std::string& call) const
    {
        return static_cast<int>(std::ranges::count(Calls, call));
    }
};

class HearingTest : public Desk {
protected:
    HearingTest()
    {
        EXPECT_TRUE(win.Load());
        win.FirstActivate("");
        win.SplashClosed();
        win.pages.SizePages(1000 * kScreenDot);
        area.Connect(win.pages, runner, scrollBar);
        area.resize(900, 500);
        area.show();
        runner.ShowForm = [this] {
            area.Show();
            hearing.Observe();
        };
        QObject::connect(&hearing, &Hearing::Changed, [this] { ++changes; });
    }

    ~HearingTest() override
    {
        runner.ShowForm = [] {};
    }

    /// Full measures, laid out, with the first of them in view.
    void MakeTune(int measures)
    {
        AddFullMeasures(win.tune, measures);
        win.cmdRefresh();
        View(1);
        runner.ShowForm();
    }

    int HeadOf(int measure) const
    {
        for (int i = 1; i <= win.tune.LastNote; ++i)
            if (win.tune[i].IsHead() && win.tune[i].Measure == measure)
                return i;
        return 0;
    }

    void View(int measure) { win.form.MeasHead = HeadOf(measure); }

    void WaitUntilItPlays()
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return strip.Count("Play") > 0; }, 5000));
    }

    void PlayFrom(int measure)
    {
        View(measure);
        strip.Calls.clear();
        hearing.PlayOrStop();
        WaitUntilItPlays();
        WaitForBand();
    }

    /// The timer has looked at the player's tick.
    static void WaitForBand() { QTest::qWait(60); }

    QImage Picture() { return area.grab().toImage(); }

    /// The columns of the band in a row of the page area's picture.
    static std::pair<int, int> BandIn(const QImage& picture)
    {
        int left = -1;
        int right = -1;
        for (int x = 0; x < picture.width(); ++x)
            for (int y = 0; y < picture.height(); ++y) {
                const QColor color = picture.pixelColor(x, y);
                if (color.blue() - color.red() > 20 && color.lightness() > 150) {
                    left = left < 0 ? x : left;
                    right = x;
                    break;
                }
            }
        return {left, right};
    }

    Runner runner;
    QScrollBar scrollBar;
    PageArea area;
    ScriptedPlayer strip;
    int changes = 0;
    Hearing hearing{win, runner, area, strip};
};

TEST_F(HearingTest, PlaysFromTheMeasureInViewToTheEndWithoutAFile)
{
    MakeTune(3);
    const std::string folderBefore = QDir::current().entryList(QDir::Files).join(' ').toStdString();
    PlayFrom(2);
    EXPECT_TRUE(hearing.IsOn());
    Tune tune = win.tune;
    PartToPlay part;
    part.From = 2;
    EXPECT_EQ(strip.Midi, BuildPart(tune, win.frmBldMidi.SoundNow(), part).Midi);
    EXPECT_EQ(QDir::current().entryList(QDir::Files).join(' ').toStdString(), folderBefore);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(HearingTest, TheKeptSettingsOfTheMidiFormAreUsed)
{
    MakeTune(1);
    settings.Values[{"Guitar", "Tempo"}] = "77";
    settings.Values[{"Guitar", "Instrument"}] = "30";
    const Sound sound = win.frmBldMidi.SoundNow();
    EXPECT_EQ(sound.Tempo, 77);
    EXPECT_EQ(sound.Instrument, 30);
    win.frmBldMidi.Show();
    win.frmBldMidi.CapoChange(3);
    EXPECT_EQ(win.frmBldMidi.SoundNow().OpenPitch[0], sound.OpenPitch[0] + 3);
}

TEST_F(HearingTest, StopsAndLetsGoOfTheDeviceALittleLater)
{
    MakeTune(2);
    PlayFrom(1);
    hearing.PlayOrStop();
    EXPECT_FALSE(hearing.IsOn());
    EXPECT_EQ(strip.Calls.back(), "Stop");
    hearing.PlayOrStop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return strip.Count("Play") == 2; }, 5000));
    EXPECT_EQ(strip.Count("Init"), 1);
    strip.OnEnd();
    EXPECT_FALSE(hearing.IsOn());
    EXPECT_TRUE(QTest::qWaitFor([&] { return strip.Calls.back() == "Close"; }, 5000));
}

TEST_F(HearingTest, WhatIsStillBeingBuiltIsStoppedToo)
{
    MakeTune(200);
    hearing.PlayOrStop();
    EXPECT_TRUE(hearing.IsOn());
    hearing.PlayOrStop();
    EXPECT_FALSE(hearing.IsOn());
    WaitForBand();
    EXPECT_EQ(strip.Count("Play"), 0);
}

TEST_F(HearingTest, TheTunesTroublesAreTold)
{
    MakeTune(4);
    const auto trouble = [&] {
        hearing.PlayOrStop();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !hearing.IsOn(); }, 5000));
        return hearing.Trouble();
    };
    win.tune[HeadOf(2)].BarCode = kRepeatEnd;
    win.tune[HeadOf(4)].BarCode = kRepeatEnd;
    EXPECT_EQ(trouble(), NeverEnding().what());
    win.tune[HeadOf(2)].BarCode.clear();
    win.tune[HeadOf(4)].BarCode.clear();
    View(4);
    win.tune[HeadOf(3)].Slot(1) = kDcAlFine;
    win.tune[HeadOf(2)].Slot(1) = kFine;
    EXPECT_EQ(trouble(), "Measure 4 is never played.");
    win.form.MeasHead = win.tune.LastNote + 1;
    hearing.PlayOrStop();
    EXPECT_EQ(hearing.Trouble(), "There is nothing to play here yet.");
    EXPECT_EQ(strip.Count("Play"), 0);
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_EQ(system.Ends, 0);
}

TEST_F(HearingTest, TheDevicesTroublesAreToldAndItIsTriedAgainNextTime)
{
    MakeTune(2);
    strip.Works = false;
    hearing.PlayOrStop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !hearing.IsOn(); }, 5000));
    EXPECT_EQ(hearing.Trouble(), "There is no sound.");
    strip.Works = true;
    PlayFrom(1);
    EXPECT_EQ(hearing.Trouble(), "");
    strip.OnFailure();
    EXPECT_FALSE(hearing.IsOn());
    EXPECT_NE(hearing.Trouble(), "");
    EXPECT_EQ(strip.Calls.back(), "Close");
    strip.FailsToLoad = true;
    hearing.PlayOrStop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !hearing.IsOn(); }, 5000));
    EXPECT_EQ(hearing.Trouble(), "The file is not a MIDI file.");
    EXPECT_EQ(system.Ends, 0);
}

TEST_F(HearingTest, TheBandIsUnderTheMeasureThatSoundsAndGoesWithTheMusic)
{
    MakeTune(3);
    const QImage before = Picture();
    PlayFrom(1);
    const auto first = BandIn(Picture());
    EXPECT_GE(first.first, 0);
    strip.Tick = 4 * win.frmBldMidi.SoundNow().Tempo;
    WaitForBand();
    const auto second = BandIn(Picture());
    EXPECT_NEAR(second.first, first.second, 2);
    EXPECT_GT(second.second, second.first + 20);
    hearing.Stop();
    EXPECT_EQ(Picture(), before);
}

TEST_F(HearingTest, AMeasureChangedSinceTheRefreshIsNotMarked)
{
    MakeTune(3);
    win.tune[HeadOf(1) + 1].Slot(2) = "12";
    PlayFrom(1);
    EXPECT_EQ(BandIn(Picture()).first, -1);
    win.cmdRefresh();
    WaitForBand();
    EXPECT_GE(BandIn(Picture()).first, 0);
    win.tune[HeadOf(1) + 1].Slot(2) = "7";
    win.cmdRefresh();
    WaitForBand();
    EXPECT_EQ(BandIn(Picture()).first, -1);  // what sounds is the tune as it was
}

TEST_F(HearingTest, PagesTurnWithTheMusicAndTheFormKnowsNothingOfIt)
{
    MakeTune(80);
    const QImage before = Picture();
    PlayFrom(1);
    EXPECT_EQ(area.InView().Page, 0);
    strip.Tick = 79 * 4 * win.frmBldMidi.SoundNow().Tempo;
    WaitForBand();
    EXPECT_GT(area.InView().Page, 0);
    EXPECT_GE(BandIn(Picture()).first, 0);
    EXPECT_EQ(win.pages.ShownPage, 0);
    EXPECT_TRUE(win.pages.picPage1[0].Visible);
    EXPECT_FALSE(win.pages.picPage1[1].Visible);
    EXPECT_EQ(win.pages.picPage1[0].Top, 0);
    EXPECT_EQ(scrollBar.value(), 0);
    hearing.Stop();
    EXPECT_EQ(Picture(), before);
}

TEST_F(HearingTest, WhoeverTurnsThePageKeepsIt)
{
    MakeTune(80);
    const int last = 79 * 4 * win.frmBldMidi.SoundNow().Tempo;
    const auto turnAway = [&](const std::function<void()>& userAction) {
        strip.Tick = last;
        PlayFrom(1);
        EXPECT_NE(area.InView().Page, 0);
        userAction();
        WaitForBand();
        const PageWindow view = area.InView();
        hearing.Stop();
        EXPECT_EQ(area.InView(), view);
        return view;
    };
    EXPECT_EQ(turnAway([&] { runner.Run("Next Page", [&] { win.pages.mnuPgDown(); }); }).Page, 1);
    win.pages.mnuPgDown();
    scrollBar.setValue(0);
    win.pages.ResetCounters();
    win.cmdRefresh();
    area.Show();
    EXPECT_EQ(turnAway([&] { scrollBar.setValue(600); }), (PageWindow{0, 600}));
    turnAway([&] { QTest::mouseClick(&area, Qt::LeftButton, {}, {300, 300}); });
    EXPECT_EQ(win.pages.MarqueeOn, 0);  // the click was on a page that is not there
}

TEST_F(HearingTest, TheMidiFormsPlayerIsFollowedToo)
{
    MakeTune(3);
    runner.Run("Open MIDI", [&] { win.frmBldMidi.Show(); });
    runner.Run("Create", [&] { win.frmBldMidi.cmdCreate(); });
    win.tune[HeadOf(2) + 1].Slot(2) = "9";  // the file is not built of this
    runner.Run("Play", [&] { win.frmBldMidi.cmdPlay(); });
    WaitForBand();
    const auto first = BandIn(Picture());
    EXPECT_GE(first.first, 0);
    player.Tick = 4 * win.frmBldMidi.controls.HSlider1;
    WaitForBand();
    EXPECT_NEAR(BandIn(Picture()).first, first.second, 2);
    player.OnEnd();  // no event of the main form
    WaitForBand();
    EXPECT_EQ(BandIn(Picture()).first, -1);
}

TEST_F(HearingTest, OnlyOneOfBothPlayersPlays)
{
    MakeTune(3);
    runner.Run("Open MIDI", [&] { win.frmBldMidi.Show(); });
    runner.Run("Create", [&] { win.frmBldMidi.cmdCreate(); });
    runner.Run("Play", [&] { win.frmBldMidi.cmdPlay(); });
    PlayFrom(1);
    EXPECT_FALSE(win.frmBldMidi.IsPlaying());
    EXPECT_EQ(player.Calls.back(), "Stop");
    runner.Run("Play", [&] { win.frmBldMidi.cmdPlay(); });
    EXPECT_FALSE(hearing.IsOn());
    EXPECT_EQ(strip.Calls.back(), "Stop");
}

TEST_F(HearingTest, AnotherTuneIsNotShownWithTheMusicOfThisOne)
{
    MakeTune(80);
    PlayFrom(1);
    strip.Tick = 79 * 4 * win.frmBldMidi.SoundNow().Tempo;
    WaitForBand();
    EXPECT_NE(area.InView().Page, 0);
    win.form.Saved = SavedState::Saved;
    runner.Run("New", [&] { win.mnuNew(); });
    EXPECT_FALSE(hearing.IsOn());
    EXPECT_EQ(area.InView().Page, 0);
}

TEST_F(HearingTest, NothingAsksWhereTheMusicIsWhenThereIsNone)
{
    MakeTune(1);
    PlayFrom(1);
    hearing.Stop();
    WaitForBand();
    for (const QTimer* timer : hearing.findChildren<QTimer*>())
        EXPECT_FALSE(timer->isActive() && timer->interval() < 1000);
}

}  // namespace
}  // namespace quillon

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
