// How long a key on the staff takes until the staff is painted anew, in the real window.
//
//   latency TUNE KEYS
//
// TUNE is opened as from the command line, its longest measure brought into view, and KEYS frets,
// arrows and deletions typed there. What is told:
//
//   handler  from the delivery of the key event until its handler is done and the form shows it
//   paint    the paint event that follows
//   key      both: from the key to the painted staff
//   repaint  for comparison, the paint event of the same window with nothing new on the staff
//
// Prints a table of microseconds. The platform is the one of QT_QPA_PLATFORM.

#include "qt/program.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using quillon::Program;

/// The measure with the most records, the first of those.
int LongestMeasure(const quillon::Tune& tune)
{
    std::vector<int> records(static_cast<std::size_t>(tune.LastMeas) + 1);
    for (int i = 1; i <= tune.LastNote; ++i)
        ++records.at(static_cast<std::size_t>(tune[i].Measure));
    return static_cast<int>(std::max_element(records.begin(), records.end()) - records.begin());
}

void ShowMeasure(Program& program, int measure)
{
    quillon::Editor& editor = program.win.editor;
    for (int i = 0; i < program.win.tune.LastMeas && program.win.tune.CurMeas != measure; ++i)
        program.runner.Run("Next", [&] { editor.cmdNext(); });
}

struct Key {
    int code;
    const char* text;
};

/// What a hand does there: a fret, the next note, another string, a chord name now and then.
constexpr Key kKeys[] = {
    {Qt::Key_Down,   ""  },
    {Qt::Key_1,      "1" },
    {Qt::Key_2,      "2" },
    {Qt::Key_Return, "\r"},
    {Qt::Key_Right,  ""  },
    {Qt::Key_Up,     ""  },
    {Qt::Key_7,      "7" },
    {Qt::Key_Return, "\r"},
    {Qt::Key_Delete, ""  },
    {Qt::Key_Left,   ""  },
    {Qt::Key_Plus,   "+" },
};

class Spans {
public:
    void Add(qint64 nanoseconds) { all.push_back(double(nanoseconds) / 1000); }

    double Part(double part)
    {
        std::sort(all.begin(), all.end());
        return all[static_cast<std::size_t>(part * double(all.size() - 1))];
    }

    void Print(const char* name)
    {
        std::printf("%-8s %6zu %10.0f %10.0f %10.0f\n", name, all.size(), Part(.5), Part(.99),
                    Part(1));
    }

private:
    std::vector<double> all;
};

void Measure(Program& program, int count)
{
    auto* staff = program.window->findChild<QWidget*>("StaffBox");
    ShowMeasure(program, LongestMeasure(program.win.tune));
    QApplication::processEvents();

    Spans handlers;
    Spans paints;
    Spans keys;
    Spans repaints;
    QElapsedTimer clock;
    for (int i = 0; i < count; ++i) {
        const Key& key = kKeys[static_cast<std::size_t>(i) % std::size(kKeys)];
        QKeyEvent press(QEvent::KeyPress, key.code, Qt::NoModifier, key.text);
        clock.start();
        QApplication::sendEvent(staff, &press);
        const qint64 handled = clock.nsecsElapsed();
        QApplication::sendPostedEvents(program.window.get());  // the window paints what is due
        const qint64 painted = clock.nsecsElapsed();
        handlers.Add(handled);
        paints.Add(painted - handled);
        keys.Add(painted);

        QApplication::processEvents();
        staff->update();
        clock.start();
        QApplication::sendPostedEvents(program.window.get());
        repaints.Add(clock.nsecsElapsed());
    }
    std::printf("measure %d, %s\n", int(program.win.tune.CurMeas),
                qPrintable(QGuiApplication::platformName()));
    std::printf("%-8s %6s %10s %10s %10s\n", "", "count", "median us", "99% us", "most us");
    handlers.Print("handler");
    paints.Print("paint");
    keys.Print("key");
    repaints.Print("repaint");
    std::printf("ratio    %6s %10.2f %10.2f\n", "", keys.Part(.5) / repaints.Part(.5),
                keys.Part(.99) / repaints.Part(.99));
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: latency TUNE KEYS\n");
        return 2;
    }
    Program program(argv[1]);
    if (!program.Start())
        return EXIT_FAILURE;
    QTimer::singleShot(300, [&] {  // the window is up
        Measure(program, std::atoi(argv[2]));
        QApplication::exit();
    });
    return QApplication::exec();
}
