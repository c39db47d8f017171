// The strip beside the menus: undo and redo, the line of state, More, and what it leaves alone.

#include "window_desk.h"

#include "qt/documents.h"
#include "shell/key_sheet.h"
#include "shell/recent_tunes.h"
#include "support/tunes.h"

#include <QAccessible>
#include <QClipboard>
#include <QDesktopServices>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>
#include <QToolButton>
#include <QTreeWidget>
#include <QWindow>

using namespace quillon;

namespace {

class UrlCatcher : public QObject {
    Q_OBJECT

public:
    UrlCatcher() { QDesktopServices::setUrlHandler("file", this, "Take"); }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler("file"); }

    QUrl Taken;

public slots:
    void Take(const QUrl& url) { Taken = url; }
};

}  // namespace

class StripTest : public QObject, private WindowDesk {
    Q_OBJECT

    QAction* Action(const char* name) { return Window().findChild<QAction*>(name); }
    QAction* Undo() { return Action("stripUndo"); }
    QAction* Redo() { return Action("stripRedo"); }
    QAction* Play() { return Action("stripPlay"); }
    QMenu* More() { return &Window().More(); }
    QLabel* State() { return Window().findChild<QLabel*>("stripState"); }
    QToolButton* MoreButton() { return Window().findChild<QToolButton*>("stripMore"); }

    /// A control of the sheet.
    template <typename Widget> Widget* Practice(const char* name)
    {
        return FormNamed("Practice")->findChild<Widget*>(name);
    }

    QToolButton* ButtonOf(QAction* action)
    {
        for (auto* button : Window().findChildren<QToolButton*>())
            if (button->defaultAction() == action)
                return button;
        return nullptr;
    }

    QMenu* Submenu(const QString& title)
    {
        for (QAction* action : More()->actions())
            if (action->menu() && QString(action->text()).remove('&') == title)
                return action->menu();
        return nullptr;
    }

    void OpenMore() { emit More()->aboutToShow(); }

    QString TuneFile(const QString& name, int measures = 3)
    {
        Tune tune;
        AddFullMeasures(tune, measures);
        WriteFileBytes(name.toStdString(), TuneBytes(tune));
        return QDir::current().filePath(name);
    }

    void Open(const QString& path)
    {
        program->runner.Run(
            "Open", [&] { Core().OpenDropped(path.toStdString()); }, Input::Command, "Open");
    }

    /// The click that opens the menu returns when it has been closed.
    void CloseMoreWhenItIsThere()
    {
        wasThere = false;
        auto* waiting = new QTimer(&Window());
        connect(waiting, &QTimer::timeout, this, [this, waiting] {
            if (!More()->isVisible())
                return;
            wasThere = true;
            waiting->deleteLater();
            QTest::keyClick(More(), Qt::Key_Escape);
        });
        waiting->start(10);
    }

    bool wasThere = false;  // the menu of More
    QString told;

    /// In the next file dialog, which would refuse some names by itself.
    static void ChooseFile(const QString& path)
    {
        InDialog<QFileDialog>([path](QFileDialog* files) {
            files->findChild<QLineEdit*>()->setText(path);
            files->QDialog::done(QDialog::Accepted);
        });
    }

private slots:
    void init() { Begin(); }
    void cleanup() { End(); }

    void ANoteIsUndoneAndRedoneByKeys()
    {
        QVERIFY(!Undo()->isEnabled());
        QTest::keyClicks(Staff(), "12");
        QTest::keyClick(Staff(), Qt::Key_Return);
        QCOMPARE(int{Core().tune.LastNote}, 2);
        QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(int{Core().tune.LastNote}, 0);
        QVERIFY(!Undo()->isEnabled());
        QVERIFY(Staff()->hasFocus());
        QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(Core().tune[2].Slot(6), std::string("12"));
        QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(Staff(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(Core().tune[2].Slot(6), std::string("12"));
        QVERIFY(!Redo()->isEnabled());
    }

    void ButtonsAndTooltipsNameTheStep()
    {
        Open(TuneFile("three.gui"));
        Action("mnuDelMeas")->trigger();
        QCOMPARE(ButtonOf(Undo())->toolTip(), QString("Undo Delete Measure 1"));
        QCOMPARE(QAccessible::queryAccessibleInterface(ButtonOf(Undo()))->text(QAccessible::Name),
                 QString("Undo Delete Measure 1"));
        QTest::mouseClick(ButtonOf(Undo()), Qt::LeftButton);
        QCOMPARE(int{Core().tune.LastMeas}, 3);
        QCOMPARE(ButtonOf(Undo())->toolTip(), QString("Undo Open three.gui"));
        QCOMPARE(ButtonOf(Redo())->toolTip(), QString("Redo Delete Measure 1"));
        QTest::mouseClick(ButtonOf(Redo()), Qt::LeftButton);
        QCOMPARE(int{Core().tune.LastMeas}, 2);
        QCOMPARE(ButtonOf(Redo())->toolTip(), QString("Redo"));
    }

    void ImportTakesAFileOfAnotherProgram()
    {
        WriteFileBytes("reel.abc", "X:1\nT:Reel\nK:C\nc\n");
        ChooseFile(QDir::current().filePath("reel.abc"));
        Action("stripImport")->trigger();
        QCOMPARE(Core().tune[0].ChordText, std::string("Reel"));
        QCOMPARE(Undo()->text(), QString("Undo Import reel.abc"));
        for (const std::string& path : RecentTunes(Core().platform.settings))
            QVERIFY(!path.ends_with("reel.abc"));
    }

    void ImportOpensATuneOfOurOwn()
    {
        ChooseFile(TuneFile("three.txt"));
        Action("stripImport")->trigger();
        QCOMPARE(int{Core().tune.LastMeas}, 3);
        QCOMPARE(Undo()->text(), QString("Undo Open three.txt"));
    }

    void ImportSaysWhichExtensionsCanBeRead()
    {
        WriteFileBytes("reel.doc", "X:1\nT:Reel\nK:C\nc\n");
        InDialog<QFileDialog>([this](QFileDialog* files) {
            InDialog<QMessageBox>([this](QMessageBox* box) {
                told = box->text();
                box->accept();
            });
            files->findChild<QLineEdit*>()->setText(QDir::current().filePath("reel.doc"));
            files->QDialog::done(QDialog::Accepted);
        });
        Action("stripImport")->trigger();
        QVERIFY2(told.contains("reel.doc") && told.contains(".musicxml"), qPrintable(told));
        QVERIFY(!Undo()->isEnabled());
    }

    void ExportWritesTheFormThatTheExtensionSays()
    {
        TypeMeasure();
        const QList<std::pair<QString, std::string>> beginnings{
            {"a.pdf",   "%PDF"   },
            {"a.PNG",   "\x89PNG"},
            {"a.svg",   "<"      },
            {"a.mid",   "MThd"   },
            {"a.wav",   "RIFF"   },
            {"a.abc",   "X:1"    },
            {"a.xml",   "<?xml"  },
            {"a.mxl",   "PK"     },
            {"a b.txt", ""       }
        };
        for (const auto& [name, beginning] : beginnings) {
            ChooseFile(QDir::current().filePath(name));
            Action("stripExport")->trigger();
            const std::string bytes = ReadFileBytes(name.toStdString());
            QVERIFY2(bytes.size() > 40 && bytes.starts_with(beginning), qPrintable(name));
        }
        QCOMPARE(Undo()->text(), QString("Undo Note"));
        QTRY_VERIFY(Button("cmdNext")->hasFocus());
    }

    void ExportTellsWhatItLeavesOut()
    {
        QTest::keyClicks(Staff(), "5>");
        QTest::keyClick(Staff(), Qt::Key_Return);
        ChooseFile(QDir::current().filePath("bend.abc"));
        Action("stripExport")->trigger();
        auto* note = Window().findChild<QMessageBox*>("ExchangeNote");
        QVERIFY(note && note->text().startsWith("bend.abc has been written.\n\n"));
        delete note;
    }

    void WhatCannotBeExportedSaysWhy()
    {
        TypeMeasure();
        const auto trouble = [this](const QString& path) {
            told.clear();
            InDialog<QFileDialog>([&](QFileDialog* files) {
                InDialog<QMessageBox>([this](QMessageBox* box) {
                    told = box->text();
                    box->accept();
                });
                files->findChild<QLineEdit*>()->setText(path);
                files->QDialog::done(QDialog::Accepted);
            });
            Action("stripExport")->trigger();
            return told;
        };
        QVERIFY(trouble(QDir::current().filePath("a.doc")).contains("such as .pdf"));
        QVERIFY(!QFile::exists("a.doc"));
        const QString nowhere = trouble(QDir::current().filePath("nowhere/a.pdf"));
        QCOMPARE(nowhere, QString("a.pdf has not been written.\nNo such file or directory. "
                                  "Choose another place."));
        Core().tune.FileName = QDir::current().filePath("own.txt").toStdString();
        QVERIFY(trouble(QDir::current().filePath("own.txt")).contains("the tune's own file"));
        QVERIFY(!QFile::exists("own.txt"));
    }

    void TheFormChosenInTheExportDialogGivesTheExtension()
    {
        Core().tune[0].ChordText = "My Tune";
        QString offered;
        QString changed;
        InDialog<QFileDialog>([&](QFileDialog* files) {
            offered = files->findChild<QLineEdit*>()->text();
            files->selectNameFilter("ABC (*.abc)");
            emit files->filterSelected("ABC (*.abc)");
            changed = files->findChild<QLineEdit*>()->text();
            files->reject();
        });
        Action("stripExport")->trigger();
        QCOMPARE(offered, QString("My Tune.pdf"));
        QCOMPARE(changed, QString("My Tune.abc"));
    }

    void ATuneCalledLikeHtmlIsShownAsItIsCalled()
    {
        Open(TuneFile("R&B <b>.gui"));
        QCOMPARE(Undo()->text(), QString("Undo Open R&&B <b>.gui"));
        QVERIFY(!Qt::mightBeRichText(Undo()->toolTip()) || Undo()->toolTip().contains("&lt;"));
        QCOMPARE(State()->accessibleName(), QString("R&B <b>.gui · page 1 of 1"));
    }

    void AClickOnAButtonIsOneStepWithItsName()
    {
        Core().form.CurValue = kQuarter;
        QTest::mouseClick(Button("cmdRest"), Qt::LeftButton);
        QCOMPARE(Undo()->text(), QString("Undo Rest"));
        Undo()->trigger();
        QVERIFY(!Undo()->isEnabled());
        QVERIFY(Staff()->hasFocus());
        QCOMPARE(Core().form.Focus, Control::StaffBox);
    }

    void TheBlinkingCursorIsNoStep()
    {
        auto* timer = Window().findChild<QTimer*>("Timer1");
        QTest::keyClicks(Staff(), "7");
        const int caret = Core().form.CaretOn;
        QTRY_VERIFY(Core().form.CaretOn != caret);
        QVERIFY(timer->isActive());
        QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!Undo()->isEnabled());
        QCOMPARE(Core().tune[2].Slot(6), std::string());
    }

    void KeysInTheBracketBoxBelongToIt()
    {
        QTest::keyClicks(Staff(), "7");
        QTest::keyClick(Staff(), Qt::Key_Return);
        Action("mnuRepeatEnds")->trigger();
        auto* box = Window().findChild<QLineEdit*>("txtRptBracket");
        QVERIFY(box->hasFocus());
        QTest::keyClicks(box, "1.");
        for (int step = 0; step < 3; ++step)
            QTest::keyClick(box, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(box->text(), QString());
        QCOMPARE(Core().form.txtRptBracket.Text, std::string());
        QCOMPARE(Core().form.InputMode, InputMode::Bracket);
        QTest::keyClick(box, Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(box->text(), QString("1."));
        QCOMPARE(Core().tune[2].Slot(6), std::string("7"));

        Action("mnuRest")->trigger();
        Undo()->trigger();
        QVERIFY(Redo()->isEnabled());
        QVERIFY(box->hasFocus());
        QTest::keyClick(box, Qt::Key_Y, Qt::ControlModifier);
        QVERIFY(Redo()->isEnabled());

        ButtonOf(Undo())->click();  // the whole bracket, as a step
        QVERIFY(!box->isVisible());
        QVERIFY(Staff()->hasFocus());
        QCOMPARE(Core().form.InputMode, InputMode::Fret);
    }

    void NothingIsUndoneWhilePageSetupIsOpenAndAllOfItAtOnceAfterwards()
    {
        Open(TuneFile("setup.gui"));
        const int steps = program->runner.Steps->UndoCount();
        Action("mnuPageSet")->trigger();
        QTRY_VERIFY(FormNamed("frmPgSetup"));
        auto* title = FormNamed("frmPgSetup")->findChild<QLineEdit*>("Text1");
        title->setFocus();
        QTest::keyClicks(title, "Reel");
        QTest::keyClick(title, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(title->text().isEmpty());  // the box's own undo
        QTest::keyClicks(title, "Jig");
        QVERIFY(!ButtonOf(Undo())->isEnabled());
        ButtonOf(Undo())->click();
        QTest::keyClick(&Window(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(program->runner.Steps->UndoCount(), steps);
        QTest::mouseClick(FormNamed("frmPgSetup")->findChild<QPushButton*>("cmdPgExit"),
                          Qt::LeftButton);
        QTRY_VERIFY(!FormNamed("frmPgSetup"));
        QCOMPARE(Core().tune[0].ChordText, std::string("Jig"));
        QCOMPARE(Undo()->text(), QString("Undo Page Setup"));
        Undo()->trigger();
        QCOMPARE(Core().tune[0].ChordText, std::string());
        QCOMPARE(program->runner.Steps->UndoCount(), steps);
    }

    void NothingIsUndoneWhileADialogWaits()
    {
        QTest::keyClicks(Staff(), "7");
        InDialog<QDialog>([&](QDialog* dialog) {
            QVERIFY(program->runner.Busy());
            Undo()->trigger();
            QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier);
            dialog->reject();
        });
        Action("mnuRemarks")->trigger();
        QCOMPARE(Core().tune[2].Slot(6), std::string("7"));
    }

    void UndoInTheLargeViewShowsTheStaffAgain()
    {
        QTest::keyClicks(Staff(), "7");
        Action("mnuLargeview")->trigger();
        QVERIFY(!Staff()->isVisible());
        QTest::keyClick(&Window(), Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(Staff()->isVisible());
        QCOMPARE(Core().tune[2].Slot(6), std::string());
    }

    void UndoToAnotherTuneShowsItsPages()
    {
        Open(TuneFile("three.gui"));
        QCOMPARE(State()->text(), QString("three.gui · page 1 of 1"));
        const std::string page = Core().pages.Page(0).Surface.Picture().Log();
        Action("mnuNew")->trigger();
        QVERIFY(Core().pages.Page(0).Surface.Picture().Log() != page);
        Undo()->trigger();
        QCOMPARE(Core().pages.Page(0).Surface.Picture().Log(), page);
        QCOMPARE(State()->text(), QString("three.gui · page 1 of 1"));
        Redo()->trigger();
        QCOMPARE(State()->text(), QString("New tune"));
    }

    void TheLineOfStateFollows()
    {
        QCOMPARE(State()->text(), QString("New tune"));
        QTest::keyClicks(Staff(), "7");
        QCOMPARE(State()->text(), QString("New tune, changed"));
        QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(State()->text(), QString("New tune"));
        Open(TuneFile("three.gui"));
        QCOMPARE(State()->text(), QString("three.gui · page 1 of 1"));
    }

    void ASaveThatFailedLeavesTheTuneChanged()
    {
        QTest::keyClicks(Staff(), "7");
        ChooseFile("/nowhere/at/all.gui");
        QTest::keyClick(Staff(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(Core().form.Saved, SavedState::Unsaved);
        QVERIFY(State()->accessibleName().contains(", changed"));
    }

    void SaveAsksForANameOnceAndThenSavesThere()
    {
        QTest::keyClicks(Staff(), "7");
        const QString path = QDir::current().filePath("saved.gui");
        ChooseFile(path);
        QTest::keyClick(Staff(), Qt::Key_S, Qt::ControlModifier);
        QVERIFY(QFile::exists(path));
        QCOMPARE(State()->text(), QString("saved.gui"));
        QVERIFY(QTest::qWaitForWindowActive(&Window()));
        QTest::keyClicks(Staff(), "5");
        QCOMPARE(State()->text(), QString("saved.gui, changed"));
        QTest::keyClick(Staff(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(State()->text(), QString("saved.gui"));
        QVERIFY(ReadFileBytes(path.toStdString()).find("\"75\"") != std::string::npos);
        QCOMPARE(RecentTunes(program->settings).front(), path.toStdString());
    }

    void NothingIsSavedOrCheckedWhileAMeasureIsInserted()
    {
        Open(TuneFile("insert.gui"));
        Action("mnuInsMeas")->trigger();
        for (const char* name : {"stripSave", "stripCheck", "stripOrder"})
            QVERIFY(!Action(name)->isEnabled());
        Undo()->trigger();
        QVERIFY(Action("stripSave")->isEnabled());
    }

    void RecentTunesOpenWithTheSaveQuestion()
    {
        const QString first = TuneFile("first.gui");
        const QString second = TuneFile("second.gui");
        Open(first);
        Open(second);
        QTest::keyClicks(Staff(), "7");
        QFile::remove(second);
        OpenMore();
        QMenu* recent = Submenu("Recent Tunes");
        QCOMPARE(recent->actions()[0]->text(), QString("&1 second.gui"));
        QVERIFY(!recent->actions()[0]->isEnabled());  // its file has gone
        QCOMPARE(recent->actions()[1]->text(), QString("&2 first.gui"));
        QCOMPARE(recent->actions()[1]->toolTip(), first);
        bool asked = false;
        InDialog<QMessageBox>([&](QMessageBox* box) {
            asked = true;
            box->button(QMessageBox::No)->click();
        });
        recent->actions()[1]->trigger();
        QVERIFY(asked);
        QCOMPARE(Core().tune.FileName, first.toStdString());
        QCOMPARE(Undo()->text(), QString("Undo Open first.gui"));
    }

    void AnExampleIsOpenedAsANewTune()
    {
        QVERIFY(!ExamplesFolder().isEmpty());
        OpenMore();
        QMenu* examples = Submenu("Examples");
        for (QAction* action : examples->actions())
            if (action->text() == "amazing_grace.bjo")
                action->trigger();
        QCOMPARE(int{Core().tune.NumStrings}, 5);
        QVERIFY(Core().tune.LastMeas > 1);
        QVERIFY(Core().tune.FileName.empty());
        QVERIFY(!Action("mnuSave")->isEnabled());
        QVERIFY(State()->text().startsWith("New tune"));
        QCOMPARE(Undo()->text(), QString("Undo Open Example"));
        QVERIFY(RecentTunes(program->settings).empty() ||
                !QString::fromStdString(RecentTunes(program->settings).front())
                     .contains("amazing_grace"));
    }

    void RescuedTunesAreThereWhenThereAreAny()
    {
        std::filesystem::remove_all(RescuedFolder(QtSystem().ProgramFolder()));
        OpenMore();
        QVERIFY(!Submenu("Rescued Tunes")->menuAction()->isVisible());
        Window().More().FillRescued = [](QMenu& menu) { menu.addAction("one"); };
        OpenMore();
        QVERIFY(Submenu("Rescued Tunes")->menuAction()->isVisible());
        QCOMPARE(Submenu("Rescued Tunes")->actions().size(), 1);
    }

    void TheCheckListsWhatIsWrongAndChangesNothing()
    {
        Open(TuneFile("check.gui"));
        Core().tune[3].NoteCode = kHalf;
        const std::string before = Core().view.StaffBox.Picture().Log();
        const int note = Core().tune.CurNote;
        Action("stripCheck")->trigger();
        auto* sheet = Window().findChild<QDialog*>("Check the Tune");
        QVERIFY(sheet && sheet->isVisible() && !sheet->isModal());
        auto* list = sheet->findChild<QListWidget*>();
        QCOMPARE(list->item(0)->text(), QString("measure 1: has 5 beats instead of 4"));
        QCOMPARE(int{Core().tune.CurNote}, note);
        QCOMPARE(Core().view.StaffBox.Picture().Log(), before);
        Action("stripOrder")->trigger();
        auto* order = Window().findChild<QDialog*>("Playing Order");
        QCOMPARE(order->findChild<QListWidget*>()->item(0)->text(), QString("1-3"));
        QTest::keyClick(sheet, Qt::Key_Escape);
        QTest::keyClick(order, Qt::Key_Escape);
        QTRY_VERIFY(!Window().findChild<QDialog*>());
    }

    void ACleanTuneIsSaidToBeClean()
    {
        Open(TuneFile("clean.gui"));
        Action("stripCheck")->trigger();
        Action("stripCheck")->trigger();  // one sheet, not two
        QCOMPARE(Window().findChildren<QDialog*>().size(), 1);
        QCOMPARE(Window().findChild<QListWidget*>()->item(0)->text(),
                 QString("Nothing is wrong with this tune."));
    }

    void AllKeysAreOnTheSheet()
    {
        Action("stripKeys")->trigger();
        auto* list = Window().findChild<QTreeWidget*>();
        QVERIFY(list);
        QCOMPARE(std::size_t(list->topLevelItemCount()), KeySheet().size());
        QCOMPARE(list->findItems("Ctrl+S", Qt::MatchExactly | Qt::MatchRecursive).size(), 1);
        QCOMPARE(list->findItems("Ctrl+H", Qt::MatchExactly | Qt::MatchRecursive).size(), 1);
    }

    void F11OpensTheManual()
    {
        if (ManualFile().isEmpty())
            QSKIP("the manual has not been built");
        const UrlCatcher catcher;
        QTest::keyClick(Staff(), Qt::Key_F11);
        QCOMPARE(catcher.Taken.toLocalFile(), ManualFile());
    }

    void F5PlaysAndF5OrEscapeOrTheButtonStops()
    {
        Open(TuneFile("three.gui"));
        const auto isOn = [&] { return Play()->text() == "Stop"; };
        QTest::keyClick(Staff(), Qt::Key_F5);
        QVERIFY(isOn());
        QCOMPARE(ButtonOf(Play())->toolTip(), QString("Stop"));
        QTest::keyClick(Staff(), Qt::Key_F5);
        QVERIFY(!isOn());
        QTest::mouseClick(ButtonOf(Play()), Qt::LeftButton);
        QVERIFY(isOn());
        QTest::keyClick(Staff(), Qt::Key_Escape);
        QVERIFY(!isOn());
        QCOMPARE(Core().form.Saved, SavedState::Saved);  // it was no key of the staff's
        QTest::keyClick(Staff(), Qt::Key_Escape);
        QCOMPARE(Core().form.Saved, SavedState::Unsaved);
        QVERIFY(Staff()->hasFocus());
    }

    void EscapeInTheBracketBoxBelongsToIt()
    {
        Open(TuneFile("three.gui"));
        Action("mnuRepeatEnds")->trigger();
        auto* box = Window().findChild<QLineEdit*>("txtRptBracket");
        QTRY_VERIFY(box->hasFocus());
        Play()->trigger();
        QTest::keyClick(box, Qt::Key_Escape);
        QCOMPARE(Play()->text(), QString("Stop"));
        QTest::keyClick(box, Qt::Key_F5);
        QCOMPARE(Play()->text(), QString("Play"));
    }

    void ItPlaysOnWhileNotesAreTyped()
    {
        qputenv("QUILLON_AUDIO_DRIVER", "file");
        qputenv("QUILLON_AUDIO_FILE", "played.wav");
        Open(TuneFile("three.gui"));
        QTest::keyClick(Staff(), Qt::Key_F5);
        QTRY_VERIFY(QFileInfo("played.wav").size() > 10000);
        TypeMeasure();
        QCOMPARE(Play()->text(), QString("Stop"));
        QVERIFY(Staff()->hasFocus());
    }

    void WithoutSoundTheLineOfStateSaysWhyAndNothingElseHappens()
    {
        Open(TuneFile("three.gui"));
        const auto line = [&] {
            QTest::keyClick(Staff(), Qt::Key_F5);
            if (!QTest::qWaitFor([&] { return Play()->text() == "Play"; }))
                return QString("it plays");
            return State()->accessibleName();
        };
        qputenv("QUILLON_SOUNDFONT", "missing.sf2");
        QVERIFY(line().endsWith(" · The SoundFont cannot be read."));
        qunsetenv("QUILLON_SOUNDFONT");
        qputenv("QUILLON_AUDIO_DRIVER", "none");
        QVERIFY(line().endsWith(" · No sound device can be opened."));
        QVERIFY(Window().isVisible());
        QVERIFY(!QApplication::activeModalWidget());
    }

    void NothingIsPlayedOfATuneWithAMeasureThatIsBeingInserted()
    {
        Open(TuneFile("three.gui"));
        Action("mnuInsMeas")->trigger();
        QVERIFY(!Play()->isEnabled());
    }

    void PracticeRemembersWhatWasChosenForEachTune()
    {
        Open(TuneFile("three.gui"));
        QTest::keyClick(Staff(), Qt::Key_F5, Qt::ControlModifier);
        QCOMPARE(Practice<QSpinBox>("practiceFrom")->value(), 1);
        QCOMPARE(Practice<QSpinBox>("practiceTo")->value(), 2);
        QCOMPARE(Practice<QSpinBox>("practiceTo")->maximum(), 3);
        Practice<QSpinBox>("practiceFrom")->setValue(3);
        QCOMPARE(Practice<QSpinBox>("practiceTo")->value(), 3);
        Practice<QSpinBox>("practiceSpeed")->setValue(60);
        QTest::keyClick(Practice<QSpinBox>("practiceSpeed"), Qt::Key_Return);
        QCOMPARE(Play()->text(), QString("Stop"));
        QCOMPARE(Practice<QPushButton>("practiceStart")->text(), QString("&Stop"));
        QTest::keyClick(Practice<QSpinBox>("practiceSpeed"), Qt::Key_Escape);
        QCOMPARE(Play()->text(), QString("Play"));
        QVERIFY(FormNamed("Practice")->isVisible());
        QTest::keyClick(Practice<QSpinBox>("practiceSpeed"), Qt::Key_Escape);
        QVERIFY(!FormNamed("Practice")->isVisible());

        Open(TuneFile("other.gui"));
        Action("stripPractice")->trigger();
        QCOMPARE(Practice<QSpinBox>("practiceSpeed")->value(), 75);
        Open(TuneFile("three.gui"));
        Action("stripPractice")->trigger();
        QCOMPARE(Practice<QSpinBox>("practiceFrom")->value(), 3);
        QCOMPARE(Practice<QSpinBox>("practiceSpeed")->value(), 60);
    }

    void PracticeSaysWhatIsInTheWay()
    {
        Open(TuneFile("three.gui"));
        Core().tune[1].Slot(1) = "86";  // D.C. al Fine without a Fine, back and back again
        Action("stripPractice")->trigger();
        QTest::keyClick(Practice<QSpinBox>("practiceFrom"), Qt::Key_F5);
        auto* trouble = Practice<QLabel>("practiceTrouble");
        QTRY_VERIFY(trouble->text().contains("never"));
        QVERIFY(State()->accessibleName().endsWith(trouble->text()));
        QVERIFY(!QApplication::activeModalWidget());
    }

    void ItTakesNoPartInTheTabOrder()
    {
        const QWidget* strip = FormNamed("strip");
        for (const QWidget* widget : strip->findChildren<QWidget*>())
            if (widget->window() == &Window())
                QCOMPARE(widget->focusPolicy(), Qt::NoFocus);
        CloseMoreWhenItIsThere();
        QTest::mouseClick(MoreButton(), Qt::LeftButton);
        QVERIFY(wasThere);
        QCOMPARE(Window().focusWidget(), Staff());
    }

    void AltROpensMore()
    {
        CloseMoreWhenItIsThere();
        QTest::keyClick(Staff(), Qt::Key_R, Qt::AltModifier);
        QTRY_VERIFY(wasThere);
        QCOMPARE(Window().focusWidget(), Staff());
    }

    void ScreenReadersFindIt()
    {
        Open(TuneFile("three.gui"));
        QStringList names;
        QAccessibleInterface* strip = QAccessible::queryAccessibleInterface(FormNamed("strip"));
        for (int i = 0; i < strip->childCount(); ++i)
            if (!strip->child(i)->state().invisible)
                names += strip->child(i)->text(QAccessible::Name);
        QCOMPARE(names, QStringList({"three.gui · page 1 of 1", "Undo Open three.gui", "Redo",
                                     "Play", "More"}));
        QAccessibleInterface* row = strip->parent();
        QCOMPARE(row->child(0)->role(), QAccessible::MenuBar);
        QCOMPARE(row->parent(), QAccessible::queryAccessibleInterface(&Window()));
    }

    void ANarrowWindowLosesTheLineOfStateFirstThenTheIcons()
    {
        Open(TuneFile("a tune with quite a long name, as they sometimes have.gui"));
        Window().setMinimumSize(1, 1);
        const auto resize = [&](int width) {
            Window().centralWidget()->setMinimumSize(1, 1);
            Bar()->parentWidget()->resize(width, Bar()->parentWidget()->height());
        };
        const int menus = Bar()->sizeHint().width();
        const int more = MoreButton()->sizeHint().width();
        resize(menus + 800);
        QCOMPARE(State()->text(), State()->accessibleName());
        QVERIFY(State()->toolTip().isEmpty());

        resize(menus + 320);
        QVERIFY(State()->text().contains("…"));
        QVERIFY(State()->text().startsWith("a "));
        QVERIFY(State()->text().endsWith("page 1 of 1"));
        QCOMPARE(State()->toolTip(), State()->accessibleName());
        QVERIFY(State()->fontMetrics().horizontalAdvance(State()->text()) <= State()->width());

        resize(menus + more + 100);
        QCOMPARE(State()->text(), QString());
        QVERIFY(ButtonOf(Undo())->isVisible());
        QVERIFY(!More()->actions().contains(Undo()));

        resize(menus + more);
        QVERIFY(!ButtonOf(Undo())->isVisible());
        QCOMPARE(More()->actions()[0], Undo());
        QCOMPARE(More()->actions()[1], Redo());
        QCOMPARE(More()->actions()[2], Action("stripPlay"));
        QTest::keyClicks(Staff(), "7");
        QTest::keyClick(Staff(), Qt::Key_Z, Qt::ControlModifier);  // the keys still work
        QCOMPARE(Core().tune.LastMeas, Int16(3));
        QVERIFY(!Redo()->text().isEmpty() && Redo()->isEnabled());

        for (const QAction* action : Bar()->actions())
            QVERIFY(Bar()->rect().contains(Bar()->actionGeometry(const_cast<QAction*>(action))));
        QVERIFY(MoreButton()->isVisible());
        QVERIFY(MoreButton()->width() >= more);

        resize(menus + 800);
        QVERIFY(ButtonOf(Undo())->isVisible());
        QVERIFY(!More()->actions().contains(Undo()));
    }

    void TheEngravedLookIsChosenForGood()
    {
        Open(TuneFile("tune.gui"));
        QWidget* page = Window().findChild<QWidget*>("picPage");
        const QImage plainStaff = Staff()->grab().toImage();
        const QImage plainPage = page->grab().toImage();
        const Drawing picture = Core().pages.picPage1[0].Surface.Picture();
        const auto copy = [&] {
            program->clipboard.SetPicture(picture, {0, 0, 800, 400}, 800, 400);
            return QGuiApplication::clipboard()->image();
        };
        const QImage plainCopy = copy();
        QVERIFY(!Action("stripLook")->isChecked());

        Action("stripLook")->trigger();
        QVERIFY(Action("stripLook")->isChecked());
        QVERIFY(Staff()->grab().toImage() != plainStaff);
        QVERIFY(page->grab().toImage() != plainPage);
        QVERIFY(copy() != plainCopy);
        QCOMPARE(Core().pages.picPage1[0].Surface.Picture().Log(), picture.Log());
        End();
        Begin();
        QVERIFY(Action("stripLook")->isChecked());

        Action("stripLook")->trigger();
        Open(QDir::current().filePath("tune.gui"));
        QVERIFY(Staff()->grab().toImage() == plainStaff);
        QVERIFY(Window().findChild<QWidget*>("picPage")->grab().toImage() == plainPage);
        QVERIFY(copy() == plainCopy);
    }

    void TheRowIsAsHighAsTheMenuBarWas()
    {
        QCOMPARE(Bar()->parentWidget()->height(), Bar()->sizeHint().height());
    }
};

int main(int argc, char** argv)
{
    ScratchUser user;
    QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    StripTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "strip_test.moc"
