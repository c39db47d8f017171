// Plays random keys on the running program until it is killed, and tells on standard output what
// the rescue copy has to hold. kill_test.py kills it at random moments.
//
//     key_player FOLDER SEED
//     key_player FOLDER SEED RECORDS EVENTS
//
// FOLDER holds the settings, the program's folder and the tune's file, tune.gui. A line before the
// copy is brought up to date and one after it:
//
//     begin SAVED DIGEST
//     done SAVED DIGEST
//
// SAVED is 0 for unsaved work; DIGEST is the FNV-1a hash of what the tune's file would hold, with
// what a command has parked. The second form opens a tune of RECORDS records, plays EVENTS keys
// and tells what keeping the copy has cost, in microseconds.

#include "qt/program.h"
#include "store/tune_file.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>

using namespace quillon;

namespace {

std::uint64_t Digest(std::string_view bytes)
{
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return hash;
}

void Tell(const char* word, const MainWin& win)
{
    std::printf("%s %d %016llx\n", word, win.form.Saved,
                static_cast<unsigned long long>(Digest(RescueBytes(win))));
    std::fflush(stdout);
}

/// A tune of full measures, four quarters each.
void WriteTune(const std::string& path, int records)
{
    Tune tune;
    for (int i = 1; i <= records; ++i) {
        NoteRecord& record = tune[i];
        const bool head = i % 5 == 1;
        record.Measure = (i + 4) / 5;
        record.NoteCode = head ? kHead : 7;
        record.Beats = record.BeatUnit = 4;
        if (!head) {
            record.XPos = kFirstNoteX + 36 * ((i + 4) % 5 - 1);
            record.Spacing = 6;
            record.Slot(1 + i % 6) = std::to_string(i % 13);
        }
        tune.LastNote = i;
    }
    WriteFileBytes(path, TuneBytes(tune));
}

class Typist {
public:
    Typist(Program& theProgram, unsigned seed) : program(theProgram), random(seed)
    {
        answers.setInterval(0);
        QObject::connect(&answers, &QTimer::timeout, [this] { Answer(); });
        answers.start();
    }

    /// One key or command of a user who types, inserts, pastes and saves.
    void Play()
    {
        constexpr const char* kMenus[] = {"mnuInsMeas", "mnuDelMeas",  "mnuInsNoteAfter",
                                          "mnuDelNote", "mnuHalfRest", "mnuRptSign",
                                          "mnuSave",    "mnuSaveAs",   "mnuNoteBefore"};
        const int kind = Upto(99);
        if (kind < 55)
            Key(Qt::Key_0 + Upto(9));
        else if (kind < 75)
            Key(Qt::Key_Return);
        else if (kind < 82)
            Key(Upto(1) ? Qt::Key_Left : Qt::Key_Up);
        else if (kind < 85)
            Key(Qt::Key_Backspace);
        else if (kind < 88)
            CopyAndPaste();
        else if (kind < 92)
            Press(Upto(2) ? "cmdNext" : "cmdPrevious");
        else
            Trigger(kMenus[Upto(std::size(kMenus) - 1)]);
    }

    void Key(int key)
    {
        QWidget* focus = program.window->focusWidget();
        QTest::keyClick(focus ? focus : program.window.get(), static_cast<Qt::Key>(key));
    }

private:
    int Upto(std::size_t most)
    {
        return std::uniform_int_distribution<int>(0, static_cast<int>(most))(random);
    }

    void Press(const char* name) { program.window->findChild<QPushButton*>(name)->click(); }

    void Trigger(const char* name)
    {
        auto* action = program.window->findChild<QAction*>(name);
        if (action->isEnabled())
            action->trigger();
    }

    void CopyAndPaste()
    {
        const MainWin& win = program.win;
        if (win.tune.LastMeas < 2 || win.tune.LastNote > 1000)
            return;
        Trigger("mnuCopy");
        const std::string measure = std::to_string(1 + Upto(std::size_t(win.tune.LastMeas - 2)));
        program.win.form.FrmCopyBox = {measure, measure};
        program.runner.Run("Copy", [this] { program.win.editor.cmdCopyMeasure(); });
        if (auto* box = program.window->findChild<QWidget*>("FrmCopyBox"))
            box->close();
        Trigger("mnuPaste");
    }

    void Answer()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (auto* file = qobject_cast<QFileDialog*>(dialog)) {
            file->findChild<QLineEdit*>()->setText(QDir::current().filePath("tune.gui"));
            static_cast<QDialog*>(file)->QDialog::accept();
        } else if (auto* prompt = qobject_cast<QInputDialog*>(dialog)) {
            prompt->accept();
        } else if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
            QAbstractButton* yes = box->button(QMessageBox::Yes);
            yes ? yes->click() : box->accept();
        }
    }

    Program& program;
    std::mt19937 random;
    QTimer answers;
};

void TellCost(Program& program, Typist& typist, int records, int count)
{
    WriteTune("tune.gui", records);
    program.runner.Run("Open", [&] { program.win.OpenDropped("tune.gui"); });
    program.runner.Run("Goto", [&] { program.win.editor.ShowMeasure(records / 10); });
    QApplication::processEvents();
    using Clock = std::chrono::steady_clock;
    std::vector<double> costs;
    program.runner.KeepWork = [&] {
        const auto start = Clock::now();
        program.rescue.Refresh();
        costs.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    };
    for (int i = 0; i < count; ++i)
        typist.Key(i % 2 ? Qt::Key_Delete : Qt::Key_1 + i % 9);
    std::sort(costs.begin(), costs.end());
    std::printf("%d records, %zu events: median %.0f, 99th percentile %.0f\n", records,
                costs.size(), costs[costs.size() / 2], costs[costs.size() * 99 / 100]);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3)
        return EXIT_FAILURE;
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "HOME"})
        qputenv(name, argv[1]);
    QDir::setCurrent(argv[1]);
    QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    Program program("");
    if (!program.Start())
        return EXIT_FAILURE;
    QTest::qWait(20);
    program.window->findChild<QWidget*>("Splash")->close();
    QTest::qWait(20);
    Typist typist(program, static_cast<unsigned>(std::stoul(argv[2])));
    if (argc > 4) {
        TellCost(program, typist, std::stoi(argv[3]), std::stoi(argv[4]));
        return EXIT_SUCCESS;
    }
    program.runner.KeepWork = [&] {
        Tell("begin", program.win);
        program.rescue.Refresh();
        Tell("done", program.win);
    };
    for (;;) {
        typist.Play();
        QApplication::processEvents();
    }
}
