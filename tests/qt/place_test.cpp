// The place of the window on a screen of its own: remembered, and made to fit.

#include "window_desk.h"

#include "store/tune_file.h"

#include <QScreen>
#include <QSettings>

using namespace quillon;

class PlaceTest : public QObject, private WindowDesk {
    Q_OBJECT

private:
    static QSettings StoredPlace()
    {
        return QSettings(QSettings::IniFormat, QSettings::UserScope, "Quillon", "Window");
    }

    /// As a run on another screen has left it.
    static void Store(const QRect& place)
    {
        StoredPlace().setValue("Left", place.x());
        StoredPlace().setValue("Top", place.y());
        StoredPlace().setValue("Width", place.width());
        StoredPlace().setValue("Height", place.height());
        StoredPlace().setValue("Frame", QSize(4, 4));
    }

    static QRect Screen() { return QGuiApplication::primaryScreen()->availableGeometry(); }

    void StartAgain()
    {
        Window().close();
        program = std::make_unique<Program>("");
        QVERIFY(program->Start());
    }

private slots:
    void init() { Begin(); }

    void cleanup()
    {
        End();
        StoredPlace().clear();
    }

    void PlaceIsRemembered()
    {
        Window().move(90, 40);
        Window().resize(Window().minimumSizeHint() + QSize(10, 20));
        QTRY_COMPARE(StoredPlace().value("Width").toInt(), Window().width());
        const QRect place(Window().pos(), Window().size());
        for (int i = 0; i < 3; ++i) {
            StartAgain();
            QCOMPARE(QRect(Window().pos(), Window().size()), place);
        }
        Window().showMaximized();
        QTRY_VERIFY(StoredPlace().value("Maximized").toBool());
        QCOMPARE(StoredPlace().value("Width").toInt(), place.width());
        StartAgain();
        QVERIFY(Window().isMaximized());
    }

    void PlaceIsMadeToFitTheScreen_data()
    {
        QTest::addColumn<QRect>("place");
        const QRect screen = Screen();
        QTest::newRow("larger") << QRect(0, 0, 3000, 2000);
        QTest::newRow("wider") << QRect(20, 30, 2000, 800);
        QTest::newRow("higher") << QRect(20, 30, 1000, 2000);
        QTest::newRow("left") << QRect(-9000, 100, 1000, 800);
        QTest::newRow("right") << QRect(9000, 100, 1000, 800);
        QTest::newRow("above") << QRect(100, -9000, 1000, 800);
        QTest::newRow("below") << QRect(100, 9000, 1000, 800);
        QTest::newRow("partly") << QRect(-200, 700, 1000, 800);
        QTest::newRow("larger and elsewhere") << QRect(4000, 3000, 3000, 2000);
        QTest::newRow("as large") << screen;
    }

    void PlaceIsMadeToFitTheScreen()
    {
        QFETCH(QRect, place);
        Store(place);
        StartAgain();
        QVERIFY2(Screen().contains(Window().frameGeometry()),
                 qPrintable(QDebug::toString(Window().frameGeometry())));
    }

    void PlaceThatFillsTheScreenIsKept()
    {
        const QRect screen = Screen();
        const QRect place(screen.topLeft(), screen.size() - QSize(4, 4));
        Store(place);
        StartAgain();
        QCOMPARE(QRect(Window().pos(), Window().size()), place);
    }

    void PlaceWithoutASizeIsNotRestored()
    {
        Store({20, 20, 900, -5});
        QWidget window;
        window.setGeometry(10, 10, 500, 400);
        RestorePlace(window);
        QCOMPARE(window.geometry(), QRect(10, 10, 500, 400));
    }

    void PlaceFarOutIsHeldToTheScreen()
    {
        for (const char* far : {"2147483647", "-2147483648", "1e9", "far"}) {
            for (const char* key : {"Left", "Top", "Width", "Height"})
                StoredPlace().setValue(key, far);
            QWidget window;
            window.setGeometry(10, 10, 500, 400);
            RestorePlace(window);
            QVERIFY2(Screen().contains(window.geometry()), far);
        }
    }

    void NothingIsWrittenAtExit()
    {
        program->settings.Set("Prefs", "PageTop", "1");
        const auto stores = [] {
            return ReadFileBytes(QSettings(QSettings::IniFormat, QSettings::UserScope, "Quillon")
                                     .fileName()
                                     .toStdString()) +
                   ReadFileBytes(StoredPlace().fileName().toStdString());
        };
        StoredPlace().setValue("Left", 77);
        const std::string before = stores();
        Window().close();
        QCOMPARE(stores(), before);
    }
};

int main(int argc, char** argv)
{
    ScratchUser user;
    const QString screen = user.folder.filePath("screen.json");
    WriteFileBytes(screen.toStdString(),
                   R"({"screens": [{"name": "", "x": 0, "y": 0, "width": 1280, "height": 1024,
                       "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.toLocal8Bit());
    QApplication application(argc, argv);
    PlaceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "place_test.moc"
