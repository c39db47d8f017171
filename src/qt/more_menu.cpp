#include "qt/more_menu.h"

#include "qt/documents.h"
#include "qt/font_metrics.h"
#include "qt/menu_bar.h"
#include "qt/sheets.h"
#include "qt/text.h"
#include "shell/check.h"
#include "shell/key_sheet.h"
#include "shell/look_choice.h"
#include "shell/recent_tunes.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

namespace quillon {

namespace {

/// A text in which no letter chooses the entry.
QString WithoutMnemonic(QString text)
{
    return text.replace('&', "&&");
}

QList<QKeySequence> Shortcuts(const StripCommand& command)
{
    return QKeySequence::listFromString(QString(command.Shortcuts).replace(", ", "; "));
}

QStringList ProblemsOf(Tune tune, PageSettings page, int tempo)
{
    const FontMetrics metrics;
    PageView pages(metrics);
    QStringList lines;
    for (const auto& findings :
         {CheckTexts(TuneBytes(tune)), CheckTune(tune, page, pages, metrics, tempo)})
        for (const Finding& finding : findings)
            lines += ToUnicode(finding.Text());
    return lines;
}

}  // namespace

MoreMenu::MoreMenu(MainWin& mainWin, Runner& theRunner, QWidget* strip)
    : QMenu(strip), win(mainWin), runner(theRunner), mainWindow(strip->window())
{
    setObjectName("More");
    setToolTipsVisible(true);
    topEnd = addSeparator();
    topEnd->setVisible(false);
    wholeTune += Add("stripSave", [this] { Save(); });
    recent = addMenu("&Recent Tunes");
    rescued = addMenu("Rescue&d Tunes");
    examples = addMenu("&Examples");
    for (QMenu* list : {recent, rescued, examples})
        list->setToolTipsVisible(true);
    addSeparator();
    Add("stripImport", [this] { Import(); });
    wholeTune += Add("stripExport", [this] { Export(); });
    addSeparator();
    wholeTune += Add("stripPractice", [this] { Practise(); });
    wholeTune += Add("stripCheck", [this] { Check(); });
    wholeTune += Add("stripOrder", [this] { ShowOrder(); });
    addSeparator();
    AddLook();
    addSeparator();
    Add("stripManual", [this] { OpenManual(); });
    Add("stripKeys", [this] { ShowKeys(mainWindow); });
    connect(this, &QMenu::aboutToShow, this, &MoreMenu::FillLists);
}

template <typename Handler> QAction* MoreMenu::Add(const char* name, Handler handler)
{
    const StripCommand& command = FindStripCommand(name);
    QAction* action = addAction(command.Caption);
    action->setObjectName(command.Name);
    action->setShortcuts(Shortcuts(command));
    action->setToolTip(command.Hint);
    connect(action, &QAction::triggered, this, handler);
    parentWidget()->addAction(action);
    return action;
}

void MoreMenu::ShowEnabled()
{
    for (QAction* action : wholeTune)
        action->setEnabled(win.form.InputMode != InputMode::Insert);
}

void MoreMenu::ShowOnTop(const QList<QAction*>& onTop, bool shown)
{
    if (shown == topEnd->isVisible())
        return;
    topEnd->setVisible(shown);
    for (QAction* action : onTop) {
        if (shown)
            insertAction(topEnd, action);
        else
            removeAction(action);
    }
}

void MoreMenu::FillLists()
{
    for (QMenu* list : {recent, rescued, examples})
        list->clear();
    FillRecent();
    FillRescued(*rescued);
    FillExamples();
    recent->setEnabled(!recent->isEmpty());
    rescued->menuAction()->setVisible(!rescued->isEmpty());
    examples->menuAction()->setVisible(!examples->isEmpty());
}

void MoreMenu::FillRecent()
{
    int number = 0;
    for (const std::string& path : RecentTunes(win.platform.settings)) {
        const QFileInfo file(PathFromBytes(path));
        ++number;
        QAction* action = recent->addAction(QString(number < 10 ? "&%1 %2" : "%1 %2")
                                                .arg(number)
                                                .arg(WithoutMnemonic(file.fileName())));
        action->setToolTip(QDir::toNativeSeparators(file.filePath()));
        action->setEnabled(file.exists());
        connect(action, &QAction::triggered, this, [this, path] {
            runner.Run(
                "Open", [&] { OpenWithInstrument(win, path); }, Input::Command, "Open");
        });
    }
}

void MoreMenu::FillExamples()
{
    const QString folder = ExamplesFolder();
    if (folder.isEmpty())
        return;
    QStringList patterns;
    for (const InstrumentMode& mode : kInstrumentModes)
        patterns += QString("*.") + mode.Extension;
    for (const QString& name : QDir(folder).entryList(patterns, QDir::Files, QDir::Name)) {
        const std::string path = PathToBytes(folder + '/' + name);
        connect(examples->addAction(WithoutMnemonic(name)), &QAction::triggered, this,
                [this, path] {
                    runner.Run(
                        "Open", [&] { OpenAsNewTune(win, path); }, Input::Command, "Open Example");
                });
    }
}

void MoreMenu::Save()
{
    const bool hasFile = win.form.mnuSaveEnabled && win.tune.FileName > " ";
    RunEntry(*FindMenuEntry(hasFile ? "mnuSave" : "mnuSaveAs"), win, runner);
}

void MoreMenu::Check()
{
    QStringList lines = ProblemsOf(win.tune, win.page, win.frmBldMidi.TempoNow());
    if (lines.isEmpty())
        lines += "Nothing is wrong with this tune.";
    ShowLines(mainWindow, "Check the Tune", lines);
}

void MoreMenu::ShowOrder()
{
    Tune tune = win.tune;
    QString text;
    try {
        text = ToUnicode(OrderInRuns(MeasureOrder(tune)));
    } catch (const std::exception& failure) {
        text = "The tune cannot be played: " + ToUnicode(failure.what());
    }
    ShowLines(mainWindow, "Playing Order", {text.isEmpty() ? "There is nothing to play." : text});
}

void MoreMenu::AddLook()
{
    QAction* look = Add("stripLook", [this](bool engraved) {
        ChooseLook(win.platform.settings, engraved ? Look::Engraved : Look::Plain);
        emit LookChosen();
    });
    look->setCheckable(true);
    look->setChecked(ChosenLook(win.platform.settings) == Look::Engraved);
}

void MoreMenu::OpenManual()
{
    const QString manual = ManualFile();
    if (manual.isEmpty())
        QMessageBox::information(mainWindow, "Manual", "The manual has not been installed.");
    else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(manual)))
        QMessageBox::information(mainWindow, "Manual",
                                 "No browser could be started. The manual is in " + manual);
}

}  // namespace quillon
