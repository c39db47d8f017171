// The window: menus from their table, typing, stepping, going to a measure, sharp pictures.

#include "qt/font_metrics.h"
#include "qt/paint.h"
#include "qt/small_forms.h"
#include "qt/staff_view.h"
#include "qt/text.h"
#include "store/sign_codes.h"
#include "store/staged_file.h"
#include "store/tune_file.h"
#include "window_desk.h"

#include <QAction>
#include <QClipboard>
#include <QDropEvent>
#include <QFileDialog>
#include <QGuiApplication>
#include <QInputDialog>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>

#include <cmath>
#include <csignal>
#include <limits>

using namespace quillon;

class WindowTest : public QObject, private WindowDesk {
    Q_OBJECT

private:
    /// It has the tune as it stands.
    void VerifyJournal()
    {
        const std::string bytes = ReadFileBytes(program->keeper->JournalPath());
        const Moment last = ReadJournal(bytes).Run->Last();
        QCOMPARE(RescueBytes(last.Music, last.Form), RescueBytes(Core().tune, Core().form));
    }

    static std::string RescueFolder() { return QtSystem().ProgramFolder(); }

    /// Drops on the window; returns whether it was taken.
    bool Drop(const QList<QUrl>& urls)
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction | Qt::MoveAction, &data,
                              Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&Window(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                        Qt::NoModifier);
        QApplication::sendEvent(&Window(), &drop);
        return drop.dropAction() == Qt::CopyAction;
    }

    /// A tune file with one measure of one note, in the current directory.
    static QUrl TuneFile(const QString& name)
    {
        Tune tune;
        tune.LastNote = 2;
        tune[1].Measure = tune[2].Measure = 1;
        tune[1].NoteCode = kHead;
        tune[1].Beats = tune[1].BeatUnit = 4;
        tune[2].NoteCode = kQuarter;
        tune[2].Slot(6) = "9";
        WriteFileBytes(name.toStdString(), TuneBytes(tune));
        return QUrl::fromLocalFile(QDir::current().filePath(name));
    }

    /// Another program's file, in the current directory.
    static QUrl TextFile(const QString& name, const std::string& text)
    {
        WriteFileBytes(name.toStdString(), text);
        return QUrl::fromLocalFile(QDir::current().filePath(name));
    }

private slots:
    void init() { Begin(); }
    void cleanup() { End(); }

    void MenuBarIsTheTable()
    {
        const auto menus = Bar()->actions();
        QCOMPARE(std::size_t(menus.size()), Menus().size());
        for (std::size_t m = 0; m < Menus().size(); ++m) {
            const Menu& menu = Menus()[m];
            QCOMPARE(menus[int(m)]->text(), QString(menu.Caption));
            const auto entries = menus[int(m)]->menu()->actions();
            QCOMPARE(std::size_t(entries.size()), menu.Entries.size());
            for (std::size_t e = 0; e < menu.Entries.size(); ++e) {
                const MenuEntry& entry = menu.Entries[e];
                const QAction* action = entries[int(e)];
                QCOMPARE(action->isSeparator(), entry.Name == nullptr);
                if (!entry.Name)
                    continue;
                QCOMPARE(action->text(), QString(entry.Caption));
                QCOMPARE(action->objectName(), QString(entry.Name));
                QCOMPARE(action->shortcut(), QKeySequence(entry.Shortcut));
                QCOMPARE(action->isEnabled(), IsEnabled(entry, Core()));
            }
        }
    }

    void TypedMeasureGivesNextTheFocus()
    {
        TypeMeasure();
        QVERIFY(Button("cmdNext")->hasFocus());
        QCOMPARE(int{Core().tune.LastNote}, 5);
        QTest::keyClick(Button("cmdNext"), Qt::Key_Enter, Qt::KeypadModifier);
        QVERIFY(Staff()->hasFocus());
        QCOMPARE(Button("lblMeasNum")->text(), QString("2"));
        QCOMPARE(int{Core().tune.CurMeas}, 2);
    }

    void NextAndPreviousStep()
    {
        TypeMeasure();
        QTest::keyClick(Button("cmdNext"), Qt::Key_Space);
        TypeMeasure();
        QTest::mouseClick(Button("cmdPrevious"), Qt::LeftButton);
        QCOMPARE(Button("lblMeasNum")->text(), QString("1"));
        QVERIFY(Staff()->hasFocus());
        QTest::mouseClick(Button("cmdNext"), Qt::LeftButton);
        QCOMPARE(Button("lblMeasNum")->text(), QString("2"));
    }

    void GotoIsReachedByTab()
    {
        TypeMeasure();
        QTest::keyClick(Button("cmdNext"), Qt::Key_Return);
        TypeMeasure();
        QVERIFY(Button("cmdNext")->hasFocus());
        QTest::keyClick(Button("cmdNext"), Qt::Key_Tab);
        QTest::keyClick(Button("cmdPrevious"), Qt::Key_Tab);
        QVERIFY(Button("lblMeasNum")->hasFocus());
        InDialog<QInputDialog>([](QInputDialog* prompt) {
            QCOMPARE(prompt->textValue(), QString("2"));
            prompt->setTextValue("1");
            prompt->accept();
        });
        QTest::keyClick(Button("lblMeasNum"), Qt::Key_Return);
        QCOMPARE(Button("lblMeasNum")->text(), QString("1"));
        QTRY_VERIFY(Staff()->hasFocus());
    }

    void ControlsOfTabOrderTellTheCore()
    {
        QTest::keyClick(Staff(), Qt::Key_Tab);
        QCOMPARE(Core().form.Focus, Control::cmdNext);
        QTest::keyClick(Button("cmdNext"), Qt::Key_Backtab);
        QCOMPARE(Core().form.Focus, Control::StaffBox);
    }

    void ShortcutsReachNoKeyHandler()
    {
        QTest::keyClicks(Staff(), "5");
        QTest::keyClick(Staff(), Qt::Key_Return);
        QTest::keyClick(Staff(), Qt::Key_H, Qt::ControlModifier);  // a half rest, no Backspace
        QCOMPARE(int{Core().tune.LastNote}, 3);
        QCOMPARE(int{Core().tune[3].NoteCode}, kHalfRest);
        QTest::keyClick(Staff(), Qt::Key_F8, Qt::ShiftModifier);
        QCOMPARE(Core().tune[1].Slot(1), std::string(kDs));
    }

    void ShortcutsWorkInTheBracketBox()
    {
        QTest::keyClick(Staff(), Qt::Key_F7);
        auto* bracket = Window().findChild<QLineEdit*>("txtRptBracket");
        QVERIFY(bracket->isVisible() && bracket->hasFocus());
        QTest::keyClicks(bracket, "1.");
        QTest::keyClick(bracket, Qt::Key_C, Qt::ControlModifier);
        QTRY_VERIFY(FormNamed("FrmCopyBox"));
        FormNamed("FrmCopyBox")->close();
        QTRY_VERIFY(!FormNamed("FrmCopyBox"));
        bracket->setFocus();
        QTest::keyClick(bracket, Qt::Key_Return);
        QVERIFY(!bracket->isVisible());
        QCOMPARE(Core().tune[1].Slot(2), std::string("1."));
        QVERIFY(Staff()->hasFocus());
    }

    void CharacterDecidesNotTheKey()
    {
        QTest::keyClick(Staff(), Qt::Key_7, Qt::KeypadModifier);
        QTest::sendKeyEvent(QTest::Click, Staff(), Qt::Key_unknown, QString("x"), Qt::NoModifier);
        QInputMethodEvent composed;
        composed.setCommitString("3");
        QApplication::sendEvent(Staff(), &composed);
        QCOMPARE(Core().tune[2].Slot(6), std::string("7x3"));
        QTest::keyClick(Staff(), Qt::Key_G, Qt::ControlModifier);
        QCOMPARE(Core().tune[2].Slot(6), std::string("7x3"));
    }

    void ClicksAreInPoints()
    {
        // The upper figure of the time signature goes from 4 to 5.
        const double pixels = (Staff()->width() - 8) / 360.0;
        QTest::mouseClick(Staff(), Qt::LeftButton, {},
                          QPoint(int(4 + 8 * pixels), int(4 + 45 * pixels)));
        QCOMPARE(int{Core().form.CurBeats}, 5);
    }

    void NoteBarIsWorkedByMouseAndKeys()
    {
        auto* half = Window().findChild<QWidget*>("Toolbar1_9");
        QTest::mouseClick(half, Qt::LeftButton);
        QCOMPARE(int{Core().form.CurValue}, kHalf);
        QVERIFY(Staff()->hasFocus());
        auto* bar = Window().findChild<QWidget*>("Toolbar1");
        bar->setFocus(Qt::TabFocusReason);
        QTest::keyClick(bar, Qt::Key_Right);
        QTest::keyClick(bar, Qt::Key_Space);
        QCOMPARE(int{Core().form.CurValue}, kDottedHalf);
    }

    void CopyBoxKeepsItsBlankAfterTheCaret()
    {
        TypeMeasure();
        QTest::keyClick(Button("cmdNext"), Qt::Key_C, Qt::ControlModifier);
        QTRY_VERIFY(FormNamed("FrmCopyBox"));
        QWidget* box = FormNamed("FrmCopyBox");
        QVERIFY(QTest::qWaitForWindowActive(box));
        auto* Text1 = box->findChild<QLineEdit*>("Text1");
        auto* Text2 = box->findChild<QLineEdit*>("Text2");
        QCOMPARE(Text1->text(), QString(" "));
        QTRY_COMPARE(QApplication::focusWidget(), Text1);
        QTest::qWait(20);
        QTest::keyClicks(Text1, "1");
        QCOMPARE(Text1->text(), QString("1 "));
        QTest::keyClick(Text1, Qt::Key_Return);
        QCOMPARE(Text1->text(), QString("1"));
        QTRY_COMPARE(QApplication::focusWidget(), Text2);
        QTest::qWait(20);
        QTest::keyClicks(Text2, "1");
        QTest::keyClick(Text2, Qt::Key_Return);
        QTRY_VERIFY(!FormNamed("FrmCopyBox"));
        QVERIFY(Core().form.mnuPasteEnabled);
        QVERIFY(Window().findChild<QAction*>("mnuPaste")->isEnabled());
        QVERIFY(QFile::exists("CopyBuff.Dat"));
        QCOMPARE(Core().form.Focus, Control::StaffBox);
    }

    void OkOfTheCopyBoxCopies()
    {
        TypeMeasure();
        QTest::keyClick(Button("cmdNext"), Qt::Key_C, Qt::ControlModifier);
        QTRY_VERIFY(FormNamed("FrmCopyBox"));
        QWidget* box = FormNamed("FrmCopyBox");
        QVERIFY(QTest::qWaitForWindowActive(box));
        for (const char* name : {"Text1", "Text2"}) {
            auto* text = box->findChild<QLineEdit*>(name);
            text->setFocus();
            QTest::qWait(20);
            QTest::keyClicks(text, "1");
        }
        QVERIFY(!Core().form.mnuPasteEnabled);
        QTest::mouseClick(box->findChild<QPushButton*>("cmdCopyMeasure"), Qt::LeftButton);
        QTRY_VERIFY(!FormNamed("FrmCopyBox"));
        QVERIFY(Core().form.mnuPasteEnabled);
        QCOMPARE(Core().form.Focus, Control::StaffBox);
    }

    /// It is a character like any other, so the tune counts as changed.
    void EscapeOnTheStaffIsACharacter()
    {
        Core().editor.Timer1();
        QVERIFY(Core().form.CaretOn);
        QVERIFY(Core().form.Saved == SavedState::Saved);
        QTest::keyClick(Staff(), Qt::Key_Escape);
        QVERIFY(Core().form.Saved == SavedState::Unsaved);
        QVERIFY(!Core().form.CaretOn);
        QCOMPARE(Core().tune[2].Slot(6), std::string());
        QVERIFY(Staff()->hasFocus());
    }

    /// The frame is three pixels of the highlight's colour, at the left edge as everywhere.
    void FocusIsAsPlainToSeeOnAButtonAsOnTheStaff()
    {
        const auto frame = [&](QWidget* widget) {
            const QImage picture = widget->grab().toImage();
            const int row = picture.height() / 2;
            int pixels = 0;
            for (int x = 0; x < picture.width() / 8; ++x)
                pixels += picture.pixelColor(x, row) == widget->palette().highlight().color();
            return pixels / picture.devicePixelRatio();
        };
        for (const char* name : {"cmdNext", "cmdPrevious", "lblMeasNum", "cmdRest", "cmdRefresh"}) {
            QVERIFY2(Staff()->hasFocus(), name);
            QVERIFY2(frame(Staff()) >= 2, name);
            QVERIFY2(frame(Button(name)) < 1, name);
            Button(name)->setFocus();
            QVERIFY2(frame(Button(name)) >= 2, name);
            QVERIFY2(frame(Staff()) < 1, name);
            Staff()->setFocus();
        }
    }

    void BracketBoxIsAsLargeAsTheStaff()
    {
        QTest::keyClick(Staff(), Qt::Key_F7);
        auto* bracket = Window().findChild<QLineEdit*>("txtRptBracket");
        for (const QSize& size : {QSize(1024, 740), QSize(1600, 1000)}) {
            Window().resize(size);
            QCoreApplication::processEvents();
            const double pixelsPerPoint = (Staff()->width() - 8) / 360.0;
            QCOMPARE(bracket->font().pixelSize(), int(std::lround(10 * pixelsPerPoint)));
            QVERIFY(bracket->fontMetrics().height() <= bracket->height());
        }
    }

    void PageKeysScrollThePage()
    {
        auto* vsbPage = Window().findChild<QScrollBar*>("vsbPage");
        QTest::keyClick(Staff(), Qt::Key_PageDown);
        QVERIFY(vsbPage->value() > 0);
        QCOMPARE(Core().pages.Page(0).Top, -double(vsbPage->value()));
        QTest::keyClick(Staff(), Qt::Key_PageUp);
        QCOMPARE(vsbPage->value(), 0);
    }

    void PageStandsInTheMiddleBesideAScrollBarAtTheEdge()
    {
        auto* page = Window().findChild<QWidget*>("picPage");
        const auto* bar = Window().findChild<QWidget*>("vsbPage");
        Core().pages.BlankPages();
        for (const int width : {1100, 1600}) {
            Window().resize(width, 900);
            QCoreApplication::processEvents();
            QCOMPARE(bar->mapTo(&Window(), QPoint(bar->width(), 0)).x(), width);
            const QImage picture = page->grab().toImage();
            const double ratio = picture.devicePixelRatio();
            const int row = int(30 * ratio);
            int left = 0;
            while (picture.pixelColor(left, row) != QColor(Qt::white))
                ++left;
            int right = picture.width() - 1;
            while (picture.pixelColor(right, row) != QColor(Qt::white))
                --right;
            QCOMPARE(int(std::lround((right + 1 - left) / ratio)), 816);
            QVERIFY(std::abs(left - (picture.width() - 1 - right)) <= 2 * ratio);
        }
    }

    void LargeViewGivesThePageTheRoom()
    {
        Window().findChild<QAction*>("mnuLargeview")->trigger();
        QVERIFY(!Staff()->isVisible());
        Window().findChild<QAction*>("mnuSmallView")->trigger();
        QVERIFY(Staff()->isVisible() && Staff()->hasFocus());
    }

    void EverythingFitsASmallScreen()
    {
        Window().resize(1600, 1000);
        QCoreApplication::processEvents();
        QCOMPARE(Staff()->size(), StaffView::SizeAt(2));
        Window().resize(1024, 740);
        QCoreApplication::processEvents();
        QCOMPARE(Staff()->size(), StaffView::SizeAt(1.25));
        QCOMPARE(Window().size(), QSize(1024, 740));
        for (const char* name :
             {"StaffBox", "cmdNext", "cmdPrevious", "lblMeasNum", "lblLastNote", "hdbkbox",
              "Toolbar1", "cmdRest", "cmdRefresh", "picPage", "vsbPage"}) {
            auto* widget = Window().findChild<QWidget*>(name);
            const QRect place(widget->mapTo(&Window(), QPoint()), widget->size());
            QVERIFY2(Window().rect().contains(place), name);
            QVERIFY2(!widget->accessibleName().isEmpty() || qobject_cast<QLabel*>(widget), name);
        }
    }

    void TextsMoveNothing()
    {
        const QRect before = Staff()->geometry();
        const QRect next = Button("cmdNext")->geometry();
        Core().view.lblMeasNum = "1234";
        Core().view.hdbkbox = "Line Break";
        Core().form.cmdNextCaption = "OK";
        program->runner.ShowForm();
        QCoreApplication::processEvents();
        QCOMPARE(Staff()->geometry(), before);
        QCOMPARE(Button("cmdNext")->geometry(), next);
    }

    /// A staff line is black or grey on whole pixels, with white above and below, at any density.
    void StaffLinesAreSharp()
    {
        const QImage picture = Staff()->grab().toImage();
        const double ratio = picture.devicePixelRatio();
        QCOMPARE(ratio, qApp->devicePixelRatio());
        const int x = int((4 + 200 * (Staff()->width() - 8) / 360.0) * ratio);
        int grey = 0;
        for (int y = int(8 * ratio); y < picture.height() - int(8 * ratio); ++y) {
            const QColor color = picture.pixelColor(x, y);
            QVERIFY(color == QColor(Qt::white) || color == QColor(0x8c, 0x8c, 0x8c));
            grey += color != QColor(Qt::white);
        }
        QVERIFY(grey >= 6 * int(ratio));
        QCOMPARE(grey % 6, 0);
    }

    void CursorIsTakenOffWithoutATrace()
    {
        const QImage before = Staff()->grab().toImage();
        Core().editor.Timer1();
        program->runner.ShowForm();
        QVERIFY(Staff()->grab().toImage() != before);
        Core().editor.HideCaret();
        program->runner.ShowForm();
        QCOMPARE(Staff()->grab().toImage(), before);
    }

    void AnyDrawingCanBePainted()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        Drawing drawing;
        for (Shape shape : {Shape::Line, Shape::Box, Shape::Circle, Shape::Arc, Shape::Text})
            for (double number : {0.0, -5.0, 1e300, -1e300, nan, double(INFINITY)})
                for (PenMode mode : {PenMode::Plain, PenMode::Xor, PenMode::Invert}) {
                    Operation op;
                    op.Kind = shape;
                    op.X1 = op.Y2 = op.Radius = op.Start = op.Aspect = number;
                    op.Mode = mode;
                    op.Text = "\x80x";
                    op.TextFont = {"Tab", number, true};
                    drawing.Add(op);
                }
        for (bool outlines : {false, true}) {
            QImage image(100, 100, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            Paint(painter, drawing, {.UnitsPerPoint = 1, .Crisp = true, .SignOutlines = outlines});
        }
    }

    void LongTextsAreMeasuredByTheCharacter()
    {
        const Typeface font{"Arial", 12};
        constexpr int kMegabyte = 1 << 20;
        const double width = FontMetrics().Width(std::string(kMegabyte, 'x'), font);
        QVERIFY(std::abs(width / kMegabyte / FontMetrics().Width("x", font) - 1) < 1e-6);
    }

    void JoinedFiguresAreAsWideAsTheyAreCounted()
    {
        const FontMetrics metrics;
        const double figures =
            metrics.Width("2", {"Arial", 10}) + metrics.Width("3", {"Arial", 10});
        for (const char* joint : {"-", "="}) {
            const double twips = (figures + metrics.Width(joint, {"Tab", 10})) * kTwips;
            QVERIFY2(std::abs(twips - 300) < 6, qPrintable(QString::number(twips)));
        }
    }

    void OfALongTextTheBeginningIsPainted()
    {
        const auto picture = [](const std::string& text) {
            Operation op;
            op.Kind = Shape::Text;
            op.X1 = -10000;
            op.Text = text;
            op.TextFont = {"Arial", 10};
            Drawing drawing;
            drawing.Add(op);
            QImage image(400, 20, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            Paint(painter, drawing, {.UnitsPerPoint = 1});
            return image;
        };
        QString pattern;
        for (int i = 0; i < 1 << 20; ++i)
            pattern += QChar(u'a' + i % 26);
        const std::string text = pattern.toStdString();
        QCOMPARE(picture(text), picture(text.substr(0, 40000)));
        const std::string_view shown = Beginning(text, FontInTwips({"Arial", 10}), 1e6);
        QVERIFY(shown.size() < 20000);
        QVERIFY(WidthInTwips(shown, FontInTwips({"Arial", 10})) >= 1e6);
        QVERIFY(Beginning("short", FontInTwips({"Arial", 10}), 1) == "short");
    }

    void ClipboardPictureIsInPixels()
    {
        Drawing page;
        Operation line;
        line.X1 = 0;
        line.X2 = 3000;
        line.Y1 = line.Y2 = 450;
        page.Add(line);
        program->clipboard.SetPicture(page, {10, 20, 100, 50}, 100, 50);
        const QImage picture = QGuiApplication::clipboard()->image();
        const double ratio = qApp->devicePixelRatio();
        QCOMPARE(picture.size(), QSize(100, 50) * ratio);
        QCOMPARE(picture.pixelColor(int(50 * ratio), int(10 * ratio)), QColor(Qt::black));
        QCOMPARE(picture.pixelColor(int(50 * ratio), int(20 * ratio)), QColor(Qt::white));
    }

    /// A blank page's picture is blank, wherever the marquee is, also between two pixels.
    void ClipboardPictureHasNothingOfTheMarquee()
    {
        QWidget* page = Window().findChild<QWidget*>("picPage");
        PageView& pages = Core().pages;
        pages.BlankPages();
        const QImage without = page->grab().toImage();
        for (double offset = 0; offset < kScreenDot; offset += 0.5) {
            const double x = 1500 + offset;
            const double y = 1200 + 2 * offset;
            pages.picPage1MouseDown(0, x, y);
            pages.picPage1MouseMove(0, x + 3000 + 7 * offset, y + 1500 + 5 * offset, true);
            pages.picPage1MouseUp(0);
            QVERIFY(page->grab().toImage() != without);
            Window().findChild<QAction*>("mnuClipbrd")->trigger();
            const QImage picture = QGuiApplication::clipboard()->image();
            QVERIFY(picture.width() >= int(200 * qApp->devicePixelRatio()));
            QImage blank(picture.size(), picture.format());
            blank.fill(Qt::white);
            QVERIFY2(picture == blank, QByteArray::number(offset));
        }
    }

    void SettingsAreTexts()
    {
        for (const char* value :
             {".75", "-1", "True", "", " a ", "1,5", "a;b", "50%", "\xe9\x80"}) {
            program->settings.Set("Prefs", "PageTop", value);
            QCOMPARE(QtSettings().Get("Prefs", "PageTop", "x"), std::string(value));
        }
        QCOMPARE(program->settings.Get("Prefs", "Absent", "x"), std::string("x"));
    }

    void EveryByteComesBackFromUnicode()
    {
        std::string bytes;
        for (int byte = 0; byte < 256; ++byte)
            bytes += static_cast<char>(byte);
        QCOMPARE(FromUnicode(ToUnicode(bytes)), bytes);
        QCOMPARE(FromUnicode(QString::fromUtf8("e\u0301\u20ac\u4e2d")), std::string("\xe9\x80?"));
    }

    void FileFiltersOfTheToolkit()
    {
        QCOMPARE(FileFilters("Guitar Files (*.gui)|*.gui|All Files (*.*)|*.*"),
                 QString("Guitar Files (*.gui);;All Files (*)"));
        QCOMPARE(FileFilters("gui"), QString("GUI Files (*.gui)"));
    }

    void OpenDialogRefusesAFileThatDoesNotExist()
    {
        bool asked = false;
        InDialog<QFileDialog>([&](QFileDialog* dialog) {
            asked = true;
            QCOMPARE(dialog->fileMode(), QFileDialog::ExistingFile);
            dialog->reject();
        });
        Window().findChild<QAction*>("mnuOpen")->trigger();
        QVERIFY(asked);
    }

    void SaveQuestionWantsAnAnswer()
    {
        QTest::keyClicks(Staff(), "1");
        InDialog<QMessageBox>([](QMessageBox* box) {
            QTest::keyClick(box, Qt::Key_Escape);
            box->close();
            QVERIFY(box->isVisible());
            box->button(QMessageBox::No)->click();
        });
        Window().findChild<QAction*>("mnuNew")->trigger();
        QVERIFY(Core().form.Saved == SavedState::Saved);
    }

    void DroppedTuneIsOpened()
    {
        QVERIFY(Drop({TuneFile("a tune.GUI")}));
        QTRY_COMPARE(int{Core().tune.LastNote}, 2);
        QVERIFY(Core().tune.FileName.ends_with("/a tune.GUI"));
        QVERIFY(Core().form.mnuSaveEnabled);
        QVERIFY(Window().findChild<QAction*>("mnuSave")->isEnabled());
    }

    void DropAsksToSaveFirst()
    {
        QTest::keyClicks(Staff(), "1");
        bool asked = false;
        InDialog<QMessageBox>([&](QMessageBox* box) {
            asked = true;
            box->button(QMessageBox::No)->click();
        });
        QVERIFY(Drop({TuneFile("tune.gui")}));
        QVERIFY(!asked);  // the drop does not wait for the answer
        QTRY_COMPARE(Core().tune[2].Slot(6), std::string("9"));
        QVERIFY(asked);
    }

    void ADroppedFileOfAnotherProgramIsImportedAndCanBeUndone()
    {
        QTest::keyClicks(Staff(), "1");
        QTest::keyClick(Staff(), Qt::Key_Return);
        InDialog<QMessageBox>([](QMessageBox* box) { box->button(QMessageBox::No)->click(); });
        QVERIFY(Drop({TextFile("reel.ABC", "X:1\nT:Reel\nK:G\n{a}GABc d2g2|\n")}));
        QTRY_COMPARE(Core().tune[0].ChordText, std::string("Reel"));
        QCOMPARE(Core().tune.FileName, std::string());
        QTRY_VERIFY(Staff()->hasFocus());
        const auto* state = Window().findChild<QLabel*>("stripState");
        QVERIFY(state->text().startsWith("New tune, changed"));
        const auto* note = Window().findChild<QMessageBox*>("ExchangeNote");
        QVERIFY(note && !note->isModal());
        QCOMPARE(note->text(), QString("reel.ABC has been imported.\n\nA grace note is left out."));
        auto* undo = Window().findChild<QAction*>("stripUndo");
        QCOMPARE(undo->text(), QString("Undo Import reel.ABC"));
        undo->trigger();
        QCOMPARE(Core().tune[2].Slot(6), std::string("1"));
    }

    void ADroppedFileWithATuneInItIsOpenedWhateverItsExtension()
    {
        QVERIFY(Drop({TuneFile("tune.txt")}));
        QTRY_COMPARE(int{Core().tune.LastNote}, 2);
        QVERIFY(Core().tune.FileName.ends_with("/tune.txt"));
    }

    void AFileThatCannotBeImportedSaysWhyAndTheTuneStays()
    {
        QTest::keyClicks(Staff(), "1");
        QString text;
        InDialog<QMessageBox>([&](QMessageBox* box) {
            text = box->text();
            box->accept();
        });
        QVERIFY(Drop({TextFile("B\u00fcch.xml", "<score")}));
        QTRY_VERIFY(!text.isEmpty());
        QVERIFY2(text.startsWith("B\u00fcch.xml cannot be imported.\nLine 1: "), qPrintable(text));
        QCOMPARE(Core().tune[2].Slot(6), std::string("1"));
        QVERIFY(!Window().findChild<QMessageBox*>("ExchangeNote"));
    }

    void ATuneBookAsksWhichTune()
    {
        QString question;
        QStringList titles;
        InDialog<QDialog>([&](QDialog* dialog) {
            question = dialog->findChild<QLabel*>()->text();
            auto* list = dialog->findChild<QListWidget*>();
            for (int i = 0; i < list->count(); ++i)
                titles += list->item(i)->text();
            list->setCurrentRow(1);
            QTest::keyClick(list, Qt::Key_Return);
        });
        const char* book = "X:1\nT:One\nK:C\nc\n\nX:2\nK:C\nd8\n\nX:3\nT:Three\nK:C\ne\n";
        QVERIFY(Drop({TextFile("book.abc", book)}));
        QTRY_COMPARE(int{Core().tune.LastNote}, 2);
        QCOMPARE(Core().tune[2].Slot(1), std::string("10"));
        QCOMPARE(question, QString("There are 3 tunes in book.abc. Which one do you want?"));
        QCOMPARE(titles, QStringList({"One", "Tune 2", "Three"}));
    }

    void ATuneBookCanBeLeftAlone()
    {
        bool asked = false;
        InDialog<QDialog>([&](QDialog* dialog) {
            asked = true;
            dialog->reject();
        });
        QVERIFY(Drop({TextFile("book.abc", "X:1\nK:C\nc\n\nX:2\nK:C\nd\n")}));
        QTRY_VERIFY(asked);
        QCOMPARE(int{Core().tune.LastNote}, 0);
        QVERIFY(!Window().findChild<QAction*>("stripUndo")->isEnabled());
    }

    void AStartWithAFileOfAnotherProgramImportsItWithoutAGreeting()
    {
        End();
        const QString path = TextFile("start.abc", "X:1\nT:Start\nK:C\nc\n").toLocalFile();
        program = std::make_unique<Program>('"' + path.toStdString() + '"');
        QVERIFY(program->Start());
        QTRY_COMPARE(Core().tune[0].ChordText, std::string("Start"));
        QVERIFY(!FormNamed("Splash"));
        QCOMPARE(Core().form.Saved, SavedState::Unsaved);
        Window().findChild<QAction*>("stripUndo")->trigger();
        QCOMPARE(int{Core().tune.LastNote}, 0);
        QTest::keyClicks(Staff(), "3");
        QCOMPARE(Core().tune[2].Slot(6), std::string("3"));
    }

    void OnlyOneTuneFileCanBeDropped()
    {
        const QUrl tune = TuneFile("tune.gui");
        QVERIFY(!Drop({tune, tune}));
        QVERIFY(!Drop({QUrl::fromLocalFile("/picture.png")}));
        QVERIFY(!Drop({QUrl("https://example.org/tune.gui")}));
        QVERIFY(!Drop({}));
        Core().form.FormEnabled = false;
        QVERIFY(!Drop({tune}));
    }

    void SignalEndsTheRunWithoutAQuestionAndKeepsTheJournal()
    {
        for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
            QTest::keyClicks(Staff(), "1");
            QVERIFY(IsLocked(program->keeper->JournalPath()));
            QTimer::singleShot(0, qApp, [signal] { std::raise(signal); });
            QCOMPARE(QApplication::exec(), 0);
            QVERIFY(!Window().isVisible());
            VerifyJournal();
            End();
            Begin();
        }
    }

    void SessionEndKeepsTheJournal()
    {
        QTest::keyClicks(Staff(), "1");
        QTimer::singleShot(0, qApp, [] {
            QEvent quit(QEvent::Quit);
            QApplication::sendEvent(qApp, &quit);
        });
        QCOMPARE(QApplication::exec(), 0);
        VerifyJournal();
    }

    void GreetingTellsOfRescuedWork()
    {
        QVERIFY(!SplashForm(nullptr).findChild<QLabel*>("Label2")->text().contains("Unsaved"));
        const std::string stem = RescueFolder() + "/reel-Rescue-2024010";
        for (const char* name : {"1-120000.gui", "2-120000.gui", "3-120000.bjo", "4-120000.gui"})
            WriteFileBytes(stem + name, "");
        WriteFileBytes(RescueFolder() + "/air-Discarded-20240105-120000.gui", "");
        const QString text = SplashForm(nullptr).findChild<QLabel*>("Label2")->text();
        QVERIFY(text.contains("\nreel, 04 Jan 12:00\nreel, 03 Jan 12:00\n"));
        QVERIFY(!text.contains("01 Jan"));
        QVERIFY(!text.contains("air"));
        QVERIFY(text.contains("\nand 1 more"));
        std::filesystem::remove_all(RescuedFolder(RescueFolder()));
    }
};

int main(int argc, char** argv)
{
    ScratchUser user;
    QApplication application(argc, argv);
    WindowTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "window_test.moc"
