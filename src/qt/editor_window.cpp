#include "qt/editor_window.h"

#include "exchange/forms.h"
#include "qt/paint.h"
#include "qt/settings.h"
#include "qt/start_notice.h"
#include "qt/text.h"
#include "shell/import.h"
#include "shell/look_choice.h"
#include "shell/menus.h"
#include "shell/spoken.h"
#include "shell/steps.h"
#include "ui_main_win.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QScreen>

#include <cstdlib>

namespace quillon {

namespace {

constexpr QSize kLargestStart(1280, 1024);
constexpr QSize kFrameOfWindow(24, 60);  // room for the frame and a panel
constexpr int kTimer1Milliseconds = 500;
constexpr int kPlaceMilliseconds = 300;
constexpr QRectF kBracketText(12, 9, 72, 17);  // on StaffBox, in points: below the bracket's line
constexpr double kBracketFont = 10;            // points on StaffBox, as its texts

/// Writes a text only if it differs, so that nothing is laid out anew for no reason.
template <typename Widget> void SetText(Widget* widget, const std::string& text)
{
    const QString unicode = ToUnicode(text);
    if (widget->text() != unicode)
        widget->setText(unicode);
}

/// Likewise the name that screen readers know; setting it is an event to them each time.
void SetName(QWidget* widget, const QString& name)
{
    if (widget->accessibleName() != name)
        widget->setAccessibleName(name);
}

/// A label that is as wide as its longest text does not move its neighbours.
void KeepWidth(QWidget* widget, const QString& longest)
{
    widget->setMinimumWidth(widget->fontMetrics().horizontalAdvance(longest));
}

/// The tune or the file of another program that is dropped, "" if it is anything else: that cannot
/// be opened.
std::string DroppedTune(const QDropEvent& event)
{
    const QList<QUrl> urls = event.mimeData()->urls();
    if (urls.size() != 1 || !urls[0].isLocalFile())
        return {};
    const QString path = urls[0].toLocalFile();
    const std::string extension = QFileInfo(path).suffix().toLower().toStdString();
    const std::string bytes = PathToBytes(path);
    return FindModeOfExtension(extension) || FormOfFile(bytes) ? bytes : std::string();
}

bool IsShortcut(const QKeyEvent& key)
{
    const QString keys = QKeySequence(key.keyCombination()).toString();
    return FindShortcut(keys.toStdString()) != nullptr;
}

bool IsCtrlY(const QKeyEvent& key)
{
    return key.keyCombination() == (Qt::ControlModifier | Qt::Key_Y);
}

/// The toolkit lets arrows walk from button to button.
bool IsArrow(const QKeyEvent& key)
{
    return key.key() >= Qt::Key_Left && key.key() <= Qt::Key_Down;
}

}  // namespace

EditorWindow::EditorWindow(MainWin& mainWin, QtSystem& theSystem, Runner& theRunner,
                           Player& stripPlayer, std::string theCommandLine)
    : win(mainWin), system(theSystem), runner(theRunner), commandLine(std::move(theCommandLine)),
      ui(std::make_unique<Ui::MainWin>()), otherForms(*this, win, runner)
{
    ui->setupUi(this);
    txtRptBracket = new QLineEdit(ui->StaffBox);
    txtRptBracket->setObjectName("txtRptBracket");
    txtRptBracket->setAccessibleName("Repeat bracket");
    txtRptBracket->setToolTip("Number of the ending, such as 1; press Enter when done");
    txtRptBracket->setAcceptDrops(false);
    txtRptBracket->hide();
    setAcceptDrops(true);
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 2);
    large.setBold(true);
    ui->lblMeasNum->setFont(large);
    KeepWidth(ui->lblLastNote, "0000");
    KeepWidth(ui->hdbkbox, "Line Break");
    Timer1.setObjectName("Timer1");
    Timer1.setInterval(kTimer1Milliseconds);
    menus = std::make_unique<MenuBar>(*ui->menuBar, win, runner);
    AddStrip(stripPlayer);
    ConnectControls();
    ui->picPage->Connect(win.pages, runner, *ui->vsbPage);
    runner.ShowForm = [this] { ShowForm(); };
    system.OnShow = [this](Form form) {
        if (form != Form::Splash || greets)
            otherForms.Open(form);
    };
    system.OnEnd = [this] { End(); };
    resize(screen()->availableSize().boundedTo(kLargestStart) - kFrameOfWindow);
    RestorePlace(*this);
    placeTimer.setSingleShot(true);
    placeTimer.setInterval(kPlaceMilliseconds);
    connect(&placeTimer, &QTimer::timeout, this, [this] { RememberPlace(*this); });
    ShowForm();
}

EditorWindow::~EditorWindow() = default;

/// From here on menuBar() must not be called: it would put an empty one in the row's place.
void EditorWindow::AddStrip(Player& player)
{
    hearing = std::make_unique<Hearing>(win, runner, *ui->picPage, player);
    strip = new Strip(win, runner, *hearing, this);
    layout()->setMenuBar(nullptr);
    setMenuWidget(new MenuRow(ui->menuBar, strip, this));
    strip->Menu().Practise = [this] { OpenPractice(); };
    ShowLook();
    connect(&strip->Menu(), &MoreMenu::LookChosen, this, &EditorWindow::ShowLook);
    connect(strip, &Strip::Gone, this, [this] { otherForms.FollowUndo(); });
}

void EditorWindow::OpenPractice()
{
    if (!practice)
        practice = new PracticeSheet(win, *hearing, this);
    practice->ShowUp();
}

void EditorWindow::ShowLook()
{
    const Look look = ChosenLook(win.platform.settings);
    ui->StaffBox->SetLook(look);
    ui->picPage->SetLook(look);
}

void EditorWindow::ConnectControls()
{
    Editor& editor = win.editor;
    const auto click = [this](QPushButton* button, auto handler) {
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, [this, button, handler] {
            const Control control = ControlOf(button);
            runner.Run(button->accessibleName(), handler, Input::Command,
                       control == Control::None ? kGoToStep : StepName(control, win.form));
        });
    };
    ui->cmdNext->setAccessibleName("Next");
    ui->cmdPrevious->setAccessibleName("Previous");
    click(ui->cmdNext, [&] { editor.cmdNext(); });
    click(ui->cmdPrevious, [&] { editor.cmdPrevious(); });
    click(ui->cmdRest, [&] { editor.cmdRest(); });
    click(ui->cmdRefresh, [this] { win.cmdRefresh(); });
    click(ui->lblMeasNum, [&] { editor.lblMeasNum(); });

    ui->Toolbar1->installEventFilter(this);
    connect(ui->Toolbar1, &NoteBar::Clicked, this, [&](int button) {
        runner.Run(
            "Note value", [&] { editor.Toolbar1(button); }, Input::Command, kToolbarStep);
    });
    ui->StaffBox->installEventFilter(this);
    connect(ui->StaffBox, &StaffView::Key, this, &EditorWindow::StaffBoxKey);
    connect(ui->StaffBox, &StaffView::MouseDown, this, [&](double x, double y) {
        runner.Run(
            "Click on the staff", [&] { editor.StaffBoxMouseDown(x, y); }, Input::Command,
            kClickStep);
    });
    txtRptBracket->installEventFilter(this);
    connect(txtRptBracket, &QLineEdit::textEdited, this, [this](const QString& text) {
        runner.Run(
            "Repeat bracket", [&] { win.form.txtRptBracket.Text = FromUnicode(text); }, Input::Key);
    });
    connect(txtRptBracket, &QLineEdit::returnPressed, this, [&] {
        runner.Run(
            "Repeat bracket", [&] { editor.txtRptBracketEnter(); }, Input::Key);
    });
    connect(&Timer1, &QTimer::timeout, this,
            [&] { runner.RunUnobserved("Cursor", [&] { editor.Timer1(); }); });
}

/// A key goes down, and types its characters.
void EditorWindow::StaffBoxKey(int keyCode, const std::string& characters)
{
    const auto handler = [&] {
        win.editor.StaffBoxKeyDown(keyCode);
        for (char character : characters)
            win.editor.StaffBoxKeyPress(character);
    };
    runner.Run("Typing on the staff", handler, characters == "\r" ? Input::Enter : Input::Key);
}

void EditorWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    if (!activated)
        QTimer::singleShot(0, this, &EditorWindow::FirstActivate);
}

void EditorWindow::FirstActivate()
{
    if (std::exchange(activated, true))
        return;
    const std::string path = PathOf(commandLine);
    const bool imports = IsForeign(path);
    if (imports)
        greets = false;
    runner.Run("Start", [&] { win.FirstActivate(imports ? "" : commandLine); });
    if (!greets)
        runner.Run("Start", [this] { win.SplashClosed(); });
    runner.Steps.emplace(ValuesOf(win));
    OnStarted();
    if (!commandLine.empty())
        ShowStartNote(this);
    ui->StaffBox->setFocus();  // what the window offers first, when it is not a form beside it
    if (imports)
        ImportFile(path);
}

// The system closes the form: the save question is asked, but the form is not held back.
void EditorWindow::closeEvent(QCloseEvent* event)
{
    if (!ended && (!win.form.FormEnabled || runner.Busy())) {
        event->ignore();
        return;
    }
    if (!ended)
        runner.Run("Close", [this] { win.Unload(); });
    End();
}

void EditorWindow::End()
{
    ended = true;
    hearing->Stop();
    Timer1.stop();
    placeTimer.stop();
    hide();
    QMetaObject::invokeMethod(
        qApp, [] { QApplication::exit(); }, Qt::QueuedConnection);
}

void EditorWindow::EndUnasked()
{
    if (runner.Busy()) {
        // A handler waits in a dialog. It must not go on with an answer that nobody gave.
        std::quick_exit(EXIT_SUCCESS);
    }
    endedUnasked = true;
    End();
}

// A menu bar that had the keys as the window lost them does not know whom to give them back to.
void EditorWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow() || !activated)
        return;
    if (focusWidget() == ui->menuBar)
        ShowForm();
    if (otherForms.TakeWasActive())
        runner.Run("Return to the main window", [this] { win.editor.Activate(); });
}

void EditorWindow::moveEvent(QMoveEvent* event)
{
    QMainWindow::moveEvent(event);
    placeTimer.start();
}

void EditorWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    placeTimer.start();
    if (!win.pages.LargeView)
        win.pages.SizePages(height() * kScreenDot);
    FitStaff();
    ShowForm();
}

/// The largest scale, in quarter steps, that leaves the page half of the window's height.
void EditorWindow::FitStaff()
{
    const QSize margins(24 + 12, 28);
    const QSize room(width() - ui->fraMeasure->sizeHint().width() - margins.width(),
                     height() / 2 - ui->picTools->sizeHint().height() - margins.height());
    double scale = 1;
    while (scale < 2 && StaffView::SizeAt(scale + .25).width() <= room.width() &&
           StaffView::SizeAt(scale + .25).height() <= room.height())
        scale += .25;
    ui->StaffBox->SetScale(scale);
    ui->work->layout()->activate();
    ui->central->layout()->activate();
    QFont font = txtRptBracket->font();
    font.setPixelSize(ui->StaffBox->PlaceOf({0, 0, 0, kBracketFont}).height());
    txtRptBracket->setFont(font);
    txtRptBracket->setGeometry(ui->StaffBox->PlaceOf(kBracketText));
}

// What no control takes scrolls the page.
void EditorWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_PageUp)
        ui->vsbPage->triggerAction(QScrollBar::SliderPageStepSub);
    else if (event->key() == Qt::Key_PageDown)
        ui->vsbPage->triggerAction(QScrollBar::SliderPageStepAdd);
    else
        QMainWindow::keyPressEvent(event);
}

void EditorWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (DroppedTune(*event).empty() || !win.form.FormEnabled || runner.Busy())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

// The program that the file comes from waits for the end of the drop, not for the save question.
void EditorWindow::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
    QTimer::singleShot(0, this, [this, path = DroppedTune(*event)] {
        activateWindow();
        if (IsForeign(path))
            ImportFile(path);
        else
            runner.Run(
                "Open", [&] { win.OpenDropped(path); }, Input::Command, "Open");
    });
}

bool EditorWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn && !showing && activated) {
        const Control control = ControlOf(watched);
        if (control != win.form.Focus)
            runner.RunBeginning("Focus change", [&] { win.editor.SetFocus(control); });
    }
    // A menu's shortcut is the menu's, though a text box would take Ctrl+C. Ctrl+Y is the box's, as
    // the other keys of undo and redo are by themselves, and so is Escape.
    if (event->type() == QEvent::ShortcutOverride && watched == txtRptBracket) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        const bool isTheBoxes = IsCtrlY(key) || key.key() == Qt::Key_Escape;
        event->setAccepted(isTheBoxes);
        return IsShortcut(key) || isTheBoxes;
    }
    if (event->type() == QEvent::KeyPress)
        return KeyIsTaken(watched, *static_cast<QKeyEvent*>(event));
    return QMainWindow::eventFilter(watched, event);
}

/// Whether a key goes no further. A shortcut comes here while its command is off. What
/// txtRptBracket leaves alone would go on to StaffBox, on which it lies, but is not meant for it.
bool EditorWindow::KeyIsTaken(const QObject* widget, QKeyEvent& key)
{
    if (widget == txtRptBracket) {
        if (key.key() == Qt::Key_PageUp || key.key() == Qt::Key_PageDown)
            keyPressEvent(&key);
        else if (IsCtrlY(key))
            txtRptBracket->redo();
        else
            txtRptBracket->event(&key);
        key.accept();
        return true;
    }
    return IsShortcut(key) || (qobject_cast<const QPushButton*>(widget) && IsArrow(key));
}

QWidget* EditorWindow::WidgetOf(Control control) const
{
    switch (control) {
    case Control::StaffBox:
        return ui->StaffBox;
    case Control::cmdNext:
        return ui->cmdNext;
    case Control::cmdPrevious:
        return ui->cmdPrevious;
    case Control::cmdRefresh:
        return ui->cmdRefresh;
    case Control::cmdRest:
        return ui->cmdRest;
    case Control::txtRptBracket:
        return txtRptBracket;
    default:
        return nullptr;
    }
}

Control EditorWindow::ControlOf(const QObject* widget) const
{
    for (Control control : {Control::StaffBox, Control::cmdNext, Control::cmdPrevious,
                            Control::cmdRefresh, Control::cmdRest, Control::txtRptBracket})
        if (WidgetOf(control) == widget)
            return control;
    return Control::None;
}

void EditorWindow::ShowForm()
{
    const QScopedValueRollback guard(showing, true);
    setWindowTitle(ToUnicode(win.form.Caption));
    setEnabled(win.form.FormEnabled);
    ShowTools();
    menus->ShowEnabled();
    ui->StaffBox->Show(win.view.StaffBox.Picture(), win.form.Line1Visible);
    ui->picPage->Show();
    const std::string words = SpokenCursor(win.tune, win.form);
    if (!ui->StaffBox->hasFocus())
        ui->StaffBox->Tell(words);  // a reader asks for them as soon as the focus is there
    ShowFocus();
    ShowControls();
    ui->StaffBox->Tell(words);
    hearing->Observe();
    strip->Show();
    if (win.form.Timer1Enabled != Timer1.isActive())
        win.form.Timer1Enabled ? Timer1.start() : Timer1.stop();
}

void EditorWindow::ShowTools()
{
    ui->work->setVisible(!win.pages.LargeView);
    SetText(ui->cmdNext, win.form.cmdNextCaption);
    SetText(ui->cmdPrevious, win.form.cmdPreviousCaption);
    SetText(ui->lblMeasNum, win.view.lblMeasNum);
    SetText(ui->lblLastNote, win.view.lblLastNote);
    SetText(ui->hdbkbox, win.view.hdbkbox);
    SetName(ui->lblMeasNum, "Measure " + ui->lblMeasNum->text());
    SetName(ui->lblLastNote, "Last note " + ui->lblLastNote->text());
    SetName(ui->hdbkbox, win.view.hdbkbox.empty() ? "No line break" : "Line break");
    ui->Toolbar1->SetDown(win.form.Toolbar1);
    SetText(txtRptBracket, win.form.txtRptBracket.Text);
}

/// What gets the focus must be there before, and what loses it may go only afterwards. A menu bar
/// that is worked by keys keeps it while the cursor blinks.
void EditorWindow::ShowFocus()
{
    const auto& bracket = win.form.txtRptBracket;
    if (bracket.Visible && bracket.Enabled) {
        txtRptBracket->setEnabled(true);
        txtRptBracket->show();
    }
    const bool changed = std::exchange(focusShown, win.form.Focus) != win.form.Focus;
    QWidget* widget = WidgetOf(win.form.Focus);
    if (widget && focusWidget() != widget && (changed || !ui->menuBar->hasFocus()))
        widget->setFocus(Qt::OtherFocusReason);
}

void EditorWindow::ShowControls()
{
    txtRptBracket->setEnabled(win.form.txtRptBracket.Enabled);
    txtRptBracket->setVisible(win.form.txtRptBracket.Visible);
    ui->cmdRefresh->setEnabled(win.form.cmdRefreshEnabled);
}

}  // namespace quillon
