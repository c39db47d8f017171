// Playing and stopping at random moments, with the real synthesizer, while the tune is worked on:
// no thread, no open file and no memory may be left behind. 20 times; 300 with QUILLON_THOROUGH=1.

#include "window_desk.h"

#include "support/tunes.h"

#include <QDialog>
#include <QRandomGenerator>

#include <fstream>

using namespace quillon;

class HearingSoakTest : public QObject, private WindowDesk {
    Q_OBJECT

    static constexpr int kWarmUp = 10;           // rounds after which everything has been loaded
    static constexpr int kLetGoOfDevice = 1300;  // milliseconds, with a margin
    static constexpr long kMegabyte = 1 << 20;

    QRandomGenerator random{1};

    QAction* Action(const char* name) { return Window().findChild<QAction*>(name); }
    QAction* Play() { return Action("stripPlay"); }

    static int CountIn(const QString& folder)
    {
        return static_cast<int>(QDir(folder).entryList(QDir::AllEntries | QDir::System).size());
    }

    static long ResidentBytes()
    {
        long all = 0;
        long resident = 0;
        std::ifstream("/proc/self/statm") >> all >> resident;
        return resident * 4096;
    }

    void WaitRandomly() { QTest::qWait(static_cast<int>(random.bounded(60))); }

    void OpenTune()
    {
        Core().form.Saved = SavedState::Saved;  // nothing is asked
        program->runner.Run(
            "Open", [&] { Core().OpenDropped("tune.gui"); }, Input::Command, "Open");
    }

    void ChangeInstrument()
    {
        for (const char* mode : {"mnuBanjo", "mnuGuitar"}) {
            Core().form.Saved = SavedState::Saved;
            Action(mode)->trigger();
            TypeMeasure();
        }
        OpenTune();
    }

    void Work()
    {
        switch (random.bounded(6)) {
        case 0:
            TypeMeasure();
            break;
        case 1:
            Action("mnuPaste")->trigger();
            break;
        case 2:
            ChangeInstrument();
            break;
        case 3:
            Button("cmdRefresh")->click();
            break;
        case 4:
            QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier);
            break;
        default:
            Button("cmdNext")->click();
        }
    }

    void Start()
    {
        if (random.bounded(3) > 0) {
            QTest::keyClick(Staff(), Qt::Key_F5);
            return;
        }
        Action("stripPractice")->trigger();
        QTest::keyClick(FormNamed("Practice"), Qt::Key_F5);
        FormNamed("Practice")->hide();
        Window().activateWindow();
    }

    void Stop()
    {
        if (Play()->text() == "Stop")
            QTest::keyClick(Staff(), random.bounded(2) ? Qt::Key_F5 : Qt::Key_Escape);
    }

    void Round()
    {
        OpenTune();
        Start();
        WaitRandomly();
        Work();
        WaitRandomly();
        Stop();
    }

private slots:
    void initTestCase()
    {
        qputenv("QUILLON_AUDIO_DRIVER", "file");
        qputenv("QUILLON_AUDIO_FILE", "played.wav");
        Tune tune;
        AddFullMeasures(tune, 40);
        WriteFileBytes("tune.gui", TuneBytes(tune));
        WriteFileBytes("CopyBuff.Dat", RecordBytes(tune, 1, 10));
        Begin();
        Core().form.mnuPasteEnabled = true;
    }

    void cleanupTestCase() { End(); }

    void NothingIsLeftBehind()
    {
        const int rounds = qEnvironmentVariableIsSet("QUILLON_THOROUGH") ? 300 : 20;
        for (int i = 0; i < kWarmUp; ++i)
            Round();
        QTest::qWait(kLetGoOfDevice);
        const int threads = CountIn("/proc/self/task");
        const int files = CountIn("/proc/self/fd");
        const QStringList inFolder = QDir::current().entryList(QDir::Files);
        const long memory = ResidentBytes();
        for (int i = 0; i < rounds; ++i)
            Round();
        QTest::qWait(kLetGoOfDevice);
        QCOMPARE(CountIn("/proc/self/task"), threads);
        QCOMPARE(CountIn("/proc/self/fd"), files);
        const long more = ResidentBytes() - memory;
        qInfo("%d rounds: %ld kB more", rounds, more / 1024);
        QVERIFY(more < 20 * kMegabyte);
        QCOMPARE(QDir::current().entryList(QDir::Files), inFolder);
    }
};

int main(int argc, char** argv)
{
    const ScratchUser user;
    QApplication application(argc, argv);
    HearingSoakTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "hearing_soak_test.moc"
