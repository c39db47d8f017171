// What a screen reader is told, the order of Tab, and texts that fit at any size of the font.

#include "window_desk.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QStyleOptionButton>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

using namespace quillon;

namespace {

/// Roles of what a user works or reads.
bool WantsName(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::PushButton:
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
    case QAccessible::EditableText:
    case QAccessible::ComboBox:
    case QAccessible::Slider:
    case QAccessible::ScrollBar:
    case QAccessible::SpinBox:
    case QAccessible::Grouping:
    case QAccessible::MenuItem:
    case QAccessible::Window:
    case QAccessible::Dialog:
        return true;
    default:
        return false;
    }
}

void ExpectNames(QAccessibleInterface* node)
{
    if (node->state().invisible)
        return;
    const QString what = node->object() ? node->object()->objectName() : QString();
    if (WantsName(node->role()) && !what.startsWith("qt_"))
        QVERIFY2(!node->text(QAccessible::Name).isEmpty(), qPrintable(what));
    for (int i = 0; i < node->childCount(); ++i)
        if (QAccessibleInterface* child = node->child(i))
            ExpectNames(child);
}

QAccessibleInterface* Accessible(QObject* object)
{
    return QAccessible::queryAccessibleInterface(object);
}

/// The room that a widget's text has, and the room that it needs.
std::pair<QSize, QSize> RoomAndNeed(const QWidget* widget)
{
    const QFontMetrics metrics = widget->fontMetrics();
    if (auto* label = qobject_cast<const QLabel*>(widget)) {
        const bool hasLinks = Qt::mightBeRichText(label->text());
        return {label->contentsRect().size(),
                hasLinks ? label->sizeHint() : metrics.size(0, label->text())};
    }
    if (auto* button = qobject_cast<const QPushButton*>(widget)) {
        QStyleOptionButton option;
        option.initFrom(button);
        const QRect room =
            button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button);
        return {room.size(), metrics.size(Qt::TextShowMnemonic, button->text())};
    }
    if (auto* group = qobject_cast<const QGroupBox*>(widget))
        return {group->size(), metrics.size(0, group->title())};
    if (auto* box = qobject_cast<const QLineEdit*>(widget))
        return {box->contentsRect().size(), metrics.size(0, "888")};
    return {};
}

void ExpectTextsFit(const QWidget* form)
{
    for (const QWidget* widget : form->findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(form) || widget->window() != form)
            continue;
        const auto [room, need] = RoomAndNeed(widget);
        const QString what = QString("%1.%2: %3x%4 in %5x%6")
                                 .arg(form->objectName(), widget->objectName())
                                 .arg(need.width())
                                 .arg(need.height())
                                 .arg(room.width())
                                 .arg(room.height());
        QVERIFY2(need.width() <= room.width() && need.height() <= room.height(), qPrintable(what));
        const QRect place(widget->mapTo(form, QPoint()), widget->size());
        QVERIFY2(form->rect().contains(place), qPrintable(what));
    }
}

/// What screen readers are told while it lives, and what the staff then says.
class Recording {
public:
    Recording()
    {
        Events().clear();
        // No public way switches it on where no screen reader runs.
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
        QAccessible::installUpdateHandler(Record);
    }

    ~Recording()
    {
        QAccessible::installUpdateHandler(nullptr);
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(false);
    }

    Q_DISABLE_COPY_MOVE(Recording)

    static QStringList& Events()
    {
        static QStringList events;
        return events;
    }

private:
    static void Record(QAccessibleEvent* event)
    {
        QAccessibleInterface* node = event->accessibleInterface();
        const QString name = event->object() ? event->object()->objectName() : QString();
        QAccessibleTextInterface* text = node ? node->textInterface() : nullptr;
        const QString words = text ? text->text(0, text->characterCount()) : QString();
        if (event->type() == QAccessible::ValueChanged && node && node->valueInterface())
            Events() += name + " says " + words;
        else if (event->type() == QAccessible::Focus)
            Events() += name + " has the focus: " + words;
        else
            Events() += name + QString(": event 0x%1").arg(int(event->type()), 0, 16);
    }
};

}  // namespace

class AccessibilityTest : public QObject, private WindowDesk {
    Q_OBJECT

private slots:
    void init() { Begin(); }
    void cleanup() { End(); }

    void EveryControlHasAName()
    {
        ExpectNames(Accessible(&Window()));
        for (Form form : {Form::Splash, Form::frmAbout, Form::FrmCopyBox}) {
            program->system.Show(form);
            QCoreApplication::processEvents();
        }
        for (const char* name : {"Splash", "frmAbout", "FrmCopyBox"})
            ExpectNames(Accessible(FormNamed(name)));
    }

    void StaffTellsWhereTheCursorIs()
    {
        QAccessibleInterface* staff = Accessible(Staff());
        QCOMPARE(staff->text(QAccessible::Name), QString("Staff"));
        TypeMeasure();
        QTest::keyClick(Button("cmdNext"), Qt::Key_Return);
        TypeMeasure();
        Staff()->setFocus();
        QTest::keyClick(Staff(), Qt::Key_Left);
        const QString words = "Measure 2, column 3 of 4, string 6, fret 3, quarter note";
        QCOMPARE(staff->text(QAccessible::Value), words);
        QVERIFY(staff->valueInterface() && staff->textInterface());
        QTest::keyClick(Staff(), Qt::Key_Up);
        QVERIFY(staff->text(QAccessible::Value).contains("string 5, no fret"));
    }

    void EachKeySaysWhatHasChangedAndNothingElse()
    {
        const Recording recording;
        const auto said = [&](Qt::Key key) {
            Recording::Events().clear();
            QTest::keyClick(QApplication::focusWidget(), key);
            QCoreApplication::processEvents();
            return Recording::Events().filter("StaffBox");
        };
        using List = QStringList;
        QCOMPARE(said(Qt::Key_7), List("StaffBox says column 1 of 1, fret 7"));
        QCOMPARE(said(Qt::Key_Up), List("StaffBox says string 5, no fret"));
        QCOMPARE(said(Qt::Key_Down), List("StaffBox says string 6, fret 7"));
        QCOMPARE(said(Qt::Key_Return), List("StaffBox says new column 2, no fret"));
        QCOMPARE(said(Qt::Key_3), List("StaffBox says column 2 of 2, fret 3"));
        QCOMPARE(said(Qt::Key_2), List("StaffBox says fret 32"));
        QCOMPARE(said(Qt::Key_Delete), List("StaffBox says no fret"));
        QCOMPARE(said(Qt::Key_Left), List("StaffBox says column 1 of 2, fret 7"));
        QCOMPARE(said(Qt::Key_Left), List());
    }

    void TheFocusSaysAllOfIt()
    {
        TypeMeasure();
        QVERIFY(Button("cmdNext")->hasFocus());
        const Recording recording;
        QTest::keyClick(Button("cmdNext"), Qt::Key_Return);
        QVERIFY(Staff()->hasFocus());
        QVERIFY(Recording::Events().contains(
            "StaffBox has the focus: Measure 2, new column 1, string 6, no fret, quarter note"));
        QVERIFY(Recording::Events().filter("says").isEmpty());
    }

    void IdlenessSaysNothing()
    {
        QTest::keyClick(Staff(), Qt::Key_7);
        const Recording recording;
        for (int tick = 0; tick < 20; ++tick)
            program->runner.Run("Cursor", [this] { Core().editor.Timer1(); });
        QCOMPARE(Recording::Events(), QStringList());
    }

    void LabelsTellWhatTheyAre()
    {
        TypeMeasure();
        const auto name = [this](const char* widget) {
            return Accessible(FormNamed(widget))->text(QAccessible::Name);
        };
        QCOMPARE(name("lblMeasNum"), QString("Measure 1"));
        QCOMPARE(name("hdbkbox"), QString("No line break"));
        QVERIFY(name("lblLastNote").startsWith("Last note "));
    }

    void NoteBarTellsItsButtons()
    {
        FormNamed("Toolbar1")->setFocus(Qt::TabFocusReason);
        QTest::keyClick(FormNamed("Toolbar1"), Qt::Key_Right);
        QCOMPARE(Accessible(FormNamed("Toolbar1"))->text(QAccessible::Description),
                 QString("Dotted quarter"));
        QAccessibleInterface* down = Accessible(FormNamed("Toolbar1_7"));
        QCOMPARE(down->text(QAccessible::Name), QString("Quarter"));
        QVERIFY(down->state().checked);
    }

    void TabGoesRoundInTheOrderOfWork()
    {
        QStringList order;
        for (int i = 0; i < 7; ++i) {
            order += QApplication::focusWidget()->objectName();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(order, QStringList({"StaffBox", "cmdNext", "cmdPrevious", "lblMeasNum", "Toolbar1",
                                     "cmdRest", "cmdRefresh"}));
        QVERIFY(Staff()->hasFocus());
    }

    void NoTextIsCut_data()
    {
        QTest::addColumn<double>("larger");
        QTest::addColumn<bool>("contrast");
        QTest::newRow("plain") << 1.0 << false;
        QTest::newRow("large") << 1.6 << false;
        QTest::newRow("large, high contrast") << 1.6 << true;
    }

    void NoTextIsCut()
    {
        QFETCH(double, larger);
        QFETCH(bool, contrast);
        const QFont plain = QApplication::font();
        const QPalette calm = QApplication::palette();
        End();
        QFont font = plain;
        font.setPointSizeF(plain.pointSizeF() * larger);
        QApplication::setFont(font);
        if (contrast)
            QApplication::setPalette(QPalette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::white,
                                              Qt::white, Qt::black));
        Begin();
        Core().view.lblMeasNum = "300";
        Core().view.lblLastNote = "1500";
        Core().view.hdbkbox = "Line Break";
        for (const char* caption : {"Next", "Cancel"}) {
            Core().form.cmdPreviousCaption = caption;
            program->runner.ShowForm();
            for (const QSize& size : {QSize(1024, 740), QSize(1600, 1000)}) {
                Window().resize(size);
                QCoreApplication::processEvents();
                ExpectTextsFit(&Window());
            }
        }
        QVERIFY(Window().minimumSizeHint().width() <= 1024);
        for (Form form : {Form::Splash, Form::frmAbout, Form::FrmCopyBox})
            program->system.Show(form);
        QCoreApplication::processEvents();
        for (const char* name : {"Splash", "frmAbout", "FrmCopyBox"})
            ExpectTextsFit(FormNamed(name));
        End();
        QApplication::setFont(plain);
        QApplication::setPalette(calm);
    }
};

int main(int argc, char** argv)
{
    ScratchUser user;
    QApplication application(argc, argv);
    AccessibilityTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "accessibility_test.moc"
