// Keys: digits are frets on every keyboard, with and without the keypad's NumLock, and a key acts
// in the control that has the focus, nowhere else.

#include "window_desk.h"

#include <QAction>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QScrollBar>

using namespace quillon;

class KeyboardTest : public QObject, private WindowDesk {
    Q_OBJECT

private:
    /// A key as the toolkit delivers it. Qt::Key is what the layout has there without the text.
    void Press(int key, const QString& text, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               bool repeated = false)
    {
        QKeyEvent press(QEvent::KeyPress, key, modifiers, text, repeated);
        QApplication::sendEvent(Staff(), &press);
    }

    void Commit(const QString& text)
    {
        QInputMethodEvent composed;
        composed.setCommitString(text);
        QApplication::sendEvent(Staff(), &composed);
    }

    /// The text on string s of the note under the cursor, or of the one typed last.
    std::string Cell(int s = 6) { return Core().tune[2].Slot(s); }

private slots:
    void init() { Begin(); }
    void cleanup() { End(); }

    void DigitsOfTheRow_data()
    {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<bool>("shifted");
        QList<int> digits;
        for (int key = Qt::Key_0; key <= Qt::Key_9; ++key)
            digits += key;
        QTest::newRow("US, German") << digits << false;
        QTest::newRow("French, shifted") << digits << true;
        // Some systems give the key of a French digit by its unshifted letter.
        QTest::newRow("French, by letters")
            << QList<int>{Qt::Key_Agrave,     Qt::Key_Ampersand, Qt::Key_Eacute, Qt::Key_QuoteDbl,
                          Qt::Key_Apostrophe, Qt::Key_ParenLeft, Qt::Key_Minus,  Qt::Key_Egrave,
                          Qt::Key_Underscore, Qt::Key_Ccedilla}
            << true;
    }

    void DigitsOfTheRow()
    {
        QFETCH(QList<int>, keys);
        QFETCH(bool, shifted);
        for (int digit = 0; digit <= 9; ++digit) {
            Core().tune[2].Slot(6).clear();
            Press(keys[digit], QString::number(digit),
                  shifted ? Qt::ShiftModifier : Qt::NoModifier);
            QCOMPARE(Cell(), std::to_string(digit));
        }
    }

    void FrenchRowUnshiftedTypesNoDigits()
    {
        Press(Qt::Key_Eacute, QString::fromUtf8("é"));
        Press(Qt::Key_Agrave, QString::fromUtf8("à"));
        for (char c : Cell())
            QVERIFY(c < '0' || c > '9');
    }

    void ThirdLevelOfAGermanKeyboard()
    {
        Press(Qt::Key_1, "1");
        Press(Qt::Key_AsciiTilde, "~", Qt::GroupSwitchModifier);
        const std::string typed = Cell();
        Core().tune[2].Slot(6).clear();
        Press(Qt::Key_1, "1");
        Press(Qt::Key_AsciiTilde, "~", Qt::ControlModifier | Qt::AltModifier);
        QCOMPARE(Cell(), typed);
    }

    void KeypadWithNumLock()
    {
        for (int digit = 0; digit <= 9; ++digit) {
            Core().tune[2].Slot(6).clear();
            Press(Qt::Key_0 + digit, QString::number(digit), Qt::KeypadModifier);
            QCOMPARE(Cell(), std::to_string(digit));
        }
        Press(Qt::Key_Enter, "\r", Qt::KeypadModifier);
        QCOMPARE(int{Core().tune.CurNote}, 3);
    }

    void KeypadWithoutNumLockMoves()
    {
        TypeMeasure();
        Staff()->setFocus();
        const int note = Core().tune.CurNote;
        const int y = Core().form.CursorY;
        Press(Qt::Key_Left, {}, Qt::KeypadModifier);
        QCOMPARE(int{Core().tune.CurNote}, note - 1);
        Press(Qt::Key_Up, {}, Qt::KeypadModifier);
        QCOMPARE(int{Core().form.CursorY}, y - 8);
        Press(Qt::Key_Down, {}, Qt::KeypadModifier);
        QCOMPARE(int{Core().form.CursorY}, y);
        const std::string table = TuneBytes(Core().tune);
        for (int key : {Qt::Key_Home, Qt::Key_End, Qt::Key_Clear, Qt::Key_Insert})
            Press(key, {}, Qt::KeypadModifier);
        QCOMPARE(TuneBytes(Core().tune), table);
        Press(Qt::Key_Delete, "\x7f", Qt::KeypadModifier);
        QVERIFY(TuneBytes(Core().tune) != table);
    }

    void DeadKeysAndInputMethodsCommitText()
    {
        QInputMethodEvent composing("^", {});
        QApplication::sendEvent(Staff(), &composing);
        QCOMPARE(Cell(), std::string());
        Commit("1");
        Commit("2");
        QCOMPARE(Cell(), std::string("12"));
        Window().findChild<QAction*>("mnuChord")->trigger();
        Commit("Am");
        QCOMPARE(Core().tune[2].ChordText, std::string("Am"));
    }

    void DigitsOfOtherScriptsAreDigits()
    {
        Commit(QString::fromUtf8("٣"));  // Arabic
        QCOMPARE(Cell(), std::string("3"));
        Core().tune[2].Slot(6).clear();
        Press(Qt::Key_unknown, QString::fromUtf8("５"));  // full width
        QCOMPARE(Cell(), std::string("5"));
    }

    void HeldKeyRepeats()
    {
        Press(Qt::Key_1, "1");
        Press(Qt::Key_1, "1", Qt::NoModifier, true);
        QCOMPARE(Cell(), std::string("11"));
        const int y = Core().form.CursorY;
        Press(Qt::Key_Up, {});
        Press(Qt::Key_Up, {}, Qt::NoModifier, true);
        QCOMPARE(int{Core().form.CursorY}, y - 16);
    }

    void ModifiersTypeNothing()
    {
        for (auto modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
            Press(Qt::Key_1, "1", modifier);
        Press(Qt::Key_Shift, {}, Qt::ShiftModifier);
        Press(Qt::Key_Z, "\x1a", Qt::ControlModifier);
        QCOMPARE(int{Core().tune.LastNote}, 0);
    }

    /// Backspace and Enter are keys and characters: their effect is that of both, in this order.
    void BackspaceAndEnterActTwice_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("code");
        QTest::newRow("Backspace") << int(Qt::Key_Backspace) << 8;
        QTest::newRow("Return") << int(Qt::Key_Return) << 13;
        QTest::newRow("Enter") << int(Qt::Key_Enter) << 13;
    }

    void BackspaceAndEnterActTwice()
    {
        QFETCH(int, key);
        QFETCH(int, code);
        const auto prepare = [&] {
            Core().form.Saved = SavedState::Saved;
            Core().mnuNew();
            for (const char* fret : {"12", "7"}) {
                QTest::keyClicks(Staff(), fret);
                QTest::keyClick(Staff(), Qt::Key_Return);
            }
            QTest::keyClicks(Staff(), "15");
        };
        prepare();
        Press(key, QString(QChar(code)));
        const std::string pressed = TuneBytes(Core().tune);
        const int note = Core().tune.CurNote;
        prepare();
        Core().editor.StaffBoxKeyDown(code);
        Core().editor.StaffBoxKeyPress(static_cast<char>(code));
        QCOMPARE(pressed, TuneBytes(Core().tune));
        QCOMPARE(note, int{Core().tune.CurNote});
    }

    void KeysInTheBracketBoxEndThere()
    {
        QTest::keyClicks(Staff(), "5");
        QTest::keyClick(Staff(), Qt::Key_F7);
        auto* bracket = Window().findChild<QLineEdit*>("txtRptBracket");
        QTest::keyClicks(bracket, "1.");
        Core().editor.Timer1();  // a key on the staff would take the caret off
        for (int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Home, Qt::Key_End,
                        Qt::Key_Escape, Qt::Key_F5, Qt::Key_Insert})
            QTest::keyClick(bracket, Qt::Key(key));
        QCOMPARE(int{Core().form.CaretOn}, -1);
        QCOMPARE(int{Core().form.CursorY}, StringY(6));
        auto* vsbPage = Window().findChild<QScrollBar*>("vsbPage");
        QTest::keyClick(bracket, Qt::Key_PageDown);
        QVERIFY(vsbPage->value() > 0);
        QTest::keyClick(bracket, Qt::Key_PageUp);
        QCOMPARE(vsbPage->value(), 0);
        QCOMPARE(int{Core().form.CaretOn}, -1);
        QTest::keyClick(bracket, Qt::Key_Return);
        QCOMPARE(Core().tune[1].Slot(2), std::string("1."));
        QVERIFY(Staff()->hasFocus());
        QCOMPARE(int{Core().tune.LastMeas}, 0);  // the half-typed note is not committed
        QCOMPARE(int{Core().tune.CurNote}, 2);
    }

    void ArrowsOnAButtonDoNothing()
    {
        for (const char* name : {"cmdNext", "cmdPrevious", "cmdRest", "cmdRefresh", "lblMeasNum"}) {
            Button(name)->setFocus();
            const Control control = Core().form.Focus;
            for (int key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Right, Qt::Key_Down}) {
                QTest::keyClick(Button(name), Qt::Key(key));
                QVERIFY2(Button(name)->hasFocus(), name);
                QCOMPARE(Core().form.Focus, control);
            }
        }
        QCOMPARE(int{Core().tune.CurNote}, 2);
    }

    void AShortcutThatIsOffReachesNoKeyHandler()
    {
        QVERIFY(!Window().findChild<QAction*>("mnuPaste")->isEnabled());
        Core().editor.Timer1();
        QTest::simulateEvent(Staff(), true, Qt::Key_P, Qt::ControlModifier, "\x10", false);
        QCOMPARE(int{Core().form.CaretOn}, -1);
        QTest::simulateEvent(Staff(), true, Qt::Key_Y, Qt::ControlModifier, "\x19", false);
        QCOMPARE(int{Core().form.CaretOn}, 0);  // a key that no handler knows takes it off
    }

    void EscapeClosesTheCopyBox()
    {
        TypeMeasure();
        Window().findChild<QAction*>("mnuCopy")->trigger();
        QTRY_VERIFY(FormNamed("Text1") && FormNamed("Text1")->hasFocus());
        QTest::keyClicks(FormNamed("Text1"), "1");
        QTest::keyClick(FormNamed("Text1"), Qt::Key_Escape);
        QTRY_VERIFY(!FormNamed("FrmCopyBox"));
        QTRY_VERIFY(Staff()->hasFocus());
        QCOMPARE(Core().form.Focus, Control::StaffBox);
        QVERIFY(!Core().form.mnuPasteEnabled);
    }

    void CopyAgainStartsTheOpenCopyBoxAgain()
    {
        auto* mnuCopy = Window().findChild<QAction*>("mnuCopy");
        mnuCopy->trigger();
        QTRY_VERIFY(FormNamed("Text1") && FormNamed("Text1")->hasFocus());
        auto* Text1 = Window().findChild<QLineEdit*>("Text1");
        QTest::keyClicks(Text1, "12");
        QTest::keyClick(Text1, Qt::Key_Return);
        QVERIFY(!Text1->hasFocus());
        mnuCopy->trigger();
        QVERIFY(Text1->hasFocus());
        QTest::keyClicks(Text1, "3");
        QCOMPARE(Text1->text(), QString("3 "));
        QCOMPARE(Core().form.FrmCopyBox.Text1, std::string("3 "));
        FormNamed("FrmCopyBox")->close();
        QTRY_VERIFY(!FormNamed("FrmCopyBox"));
    }

    void TheMenuBarKeepsTheKeysWhileTheCursorBlinks()
    {
        Bar()->setFocus(Qt::MenuBarFocusReason);
        program->runner.Run("Cursor", [this] { Core().editor.Timer1(); });
        QVERIFY(Bar()->hasFocus());
        QTest::keyClick(Bar(), Qt::Key_F7);  // a command that moves the focus
        QVERIFY(FormNamed("txtRptBracket")->hasFocus());
    }

    void TheMenuBarGivesTheKeysBackWhenTheWindowIsActiveAgain()
    {
        Bar()->setFocus(Qt::MenuBarFocusReason);
        QWidget other;
        other.show();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        Window().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&Window()));
        QTRY_VERIFY(Staff()->hasFocus());
    }
};

int main(int argc, char** argv)
{
    ScratchUser user;
    QApplication application(argc, argv);
    KeyboardTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "keyboard_test.moc"
