// The forms beside the main one: what they show, their keys, the player, and how they go away.

#include "qt/font_metrics.h"
#include "qt/program.h"
#include "qt/small_forms.h"
#include "scratch_user.h"
#include "shell/page_setup.h"
#include "store/sign_codes.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QFontDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>

using namespace quillon;

namespace {

constexpr const char* kAudioFile = "played.wav";

}  // namespace

class FormsTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<Program> program;
    QWidget* form = nullptr;  // opened last

    EditorWindow& Window() { return *program->window; }
    MainWin& Core() { return program->win; }
    template <typename Widget> Widget* The(const char* name)
    {
        return form->findChild<Widget*>(name);
    }
    QPushButton* Button(const char* name) { return The<QPushButton>(name); }
    QLineEdit* Box(const char* name) { return The<QLineEdit>(name); }
    QSlider* Slider(const char* name) { return The<QSlider>(name); }

    void Open(const char* menu, const char* name)
    {
        Window().findChild<QAction*>(menu)->trigger();
        form = Window().findChild<QWidget*>(name);
        QVERIFY(form);
        QTRY_VERIFY(form->isActiveWindow());
    }

    void OpenMidi() { Open("mnuOpnMidi", "frmBldMidi"); }
    bool IsGone(const char* name) { return !Window().findChild<QWidget*>(name); }

    static void Click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }
    static void Type(QLineEdit* box, const char* text)
    {
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, text);
    }

    /// A measure of four quarters on the first string.
    void TypeTune()
    {
        auto* staff = Window().findChild<QWidget*>("StaffBox");
        for (const char* fret : {"0", "2", "3", "5"}) {
            QTest::keyClicks(staff, fret);
            QTest::keyClick(staff, Qt::Key_Return);
        }
    }

    std::string Setting(const char* section, const char* key)
    {
        return program->settings.Get(section, key, "none");
    }

    /// Does something in the next dialog, as soon as it is there.
    template <typename Dialog, typename Action> static void InDialog(Action action)
    {
        auto* waiting = new QTimer(qApp);
        connect(waiting, &QTimer::timeout, waiting, [waiting, action] {
            if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
                waiting->deleteLater();
                action(dialog);
            }
        });
        waiting->start(10);
    }

    /// What the form's controls hold, in one line.
    QString Held()
    {
        const MidiControls& c = Core().frmBldMidi.controls;
        return QString("tuning %1 sound %2 tempo %3 %4 capo %5 %6 type %7 loop %8 speed %9 volume ")
                   .arg(c.Combo1Index)
                   .arg(c.Combo2Index)
                   .arg(c.HSlider1)
                   .arg(c.Text1.c_str())
                   .arg(c.Capo)
                   .arg(c.lblCapo.c_str())
                   .arg(c.FType)
                   .arg(c.chkLoop)
                   .arg(c.sldTempo) +
               QString::number(c.sldVolume);
    }

    /// Opens the font dialog of the title and answers it with OK; returns the family it began with.
    template <typename Choose> QString ChooseTitleFont(Choose choose)
    {
        QString offered;
        InDialog<QFontDialog>([&](QFontDialog* dialog) {
            offered = dialog->findChild<QListView*>()->currentIndex().data().toString();
            choose(dialog);
            QTest::keyClick(dialog, Qt::Key_Return);
        });
        Click(Button("cmdTitleFont"));
        return offered;
    }

private slots:
    void init()
    {
        QFile::remove(kAudioFile);
        program = std::make_unique<Program>("");
        QVERIFY(program->Start());
        QTRY_VERIFY(Window().findChild<QWidget*>("Splash"));
        Window().findChild<QWidget*>("Splash")->close();
        QTRY_VERIFY(IsGone("Splash"));
        Window().activateWindow();
        QTRY_VERIFY(Window().isActiveWindow());
    }

    void cleanup()
    {
        Core().form.Saved = SavedState::Saved;
        program.reset();
    }

    void MidiShowsWhatItOpenedWith()
    {
        QVERIFY(!QFile::exists(kAudioFile));  // no sound is opened before
        OpenMidi();
        QVERIFY(QFile::exists(kAudioFile));
        QVERIFY(Window().isEnabled());
        QCOMPARE(form->windowTitle(), QString("MIDI Playback Unit"));
        QCOMPARE(The<QComboBox>("Combo1")->count(), 4);
        QCOMPARE(The<QComboBox>("Combo1")->currentText(), QString("Standard"));
        QCOMPARE(The<QComboBox>("Combo2")->count(), 106);
        QCOMPARE(The<QComboBox>("Combo2")->currentText(), QString("Acoustic Guitar (steel)"));
        QCOMPARE(Slider("HSlider1")->value(), 130);
        QCOMPARE(Box("Text1")->text(), QString("130"));
        QCOMPARE(The<QLabel>("lblCapo")->text(), QString("0"));
        QVERIFY(The<QRadioButton>("FType_1")->isChecked());
        QCOMPARE(Button("cmdCreate")->text(), QString("Create Play File"));
        QVERIFY(!Button("cmdClear")->isEnabled());
        QVERIFY(!Button("cmdStop")->isEnabled());
        const QRect screen = form->screen()->availableGeometry();
        QCOMPARE(form->y(), screen.y() + 13);
        QCOMPARE(form->x(), screen.x() + (screen.width() - form->width()) / 2);
    }

    void SlidersHaveTheirSteps_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QList<int>>("numbers");  // lowest, highest, start, steps, tick
        QTest::newRow("Capo") << "Capo" << QList<int>{0, 12, 0, 1, 1, 1};
        QTest::newRow("sldTempo") << "sldTempo" << QList<int>{0, 30, 10, 1, 5, 5};
        QTest::newRow("sldVolume") << "sldVolume" << QList<int>{-2500, 200, 200, 500, 1000, 500};
        QTest::newRow("HSlider1") << "HSlider1" << QList<int>{30, 300, 130, 1, 10, 0};
    }

    void SlidersHaveTheirSteps()
    {
        QFETCH(QString, name);
        QFETCH(QList<int>, numbers);
        OpenMidi();
        const auto* slider = form->findChild<QSlider*>(name);
        QCOMPARE(QList<int>({slider->minimum(), slider->maximum(), slider->value(),
                             slider->singleStep(), slider->pageStep(), slider->tickInterval()}),
                 numbers);
    }

    void TempoAndItsNumberAreKeptEqual()
    {
        OpenMidi();
        Type(Box("Text1"), "200");
        QCOMPARE(Slider("HSlider1")->value(), 130);  // still typing
        QTest::keyClick(Box("Text1"), Qt::Key_Return);
        QCOMPARE(Slider("HSlider1")->value(), 200);
        QTest::keyClick(Slider("HSlider1"), Qt::Key_Right);
        QCOMPARE(Box("Text1")->text(), QString("201"));
        Type(Box("Text1"), "fast");
        QTest::keyClick(Box("Text1"), Qt::Key_Tab);
        QCOMPARE(Box("Text1")->text(), QString("30"));
        QCOMPARE(Slider("HSlider1")->value(), 30);
    }

    void EachMidiControlSetsItsOwnValue()
    {
        OpenMidi();
        QCOMPARE(Held(), QString("tuning 0 sound 25 tempo 130 130 capo 0 0 type 1 loop 0 speed 10 "
                                 "volume 200"));
        QTest::keyClick(The<QComboBox>("Combo1"), Qt::Key_Down);
        QTest::keyClick(The<QComboBox>("Combo2"), Qt::Key_Up);
        QTest::keyClick(Slider("HSlider1"), Qt::Key_Left);
        QTest::keyClick(Slider("Capo"), Qt::Key_PageUp);
        QTest::keyClick(Slider("Capo"), Qt::Key_PageUp);
        Click(The<QRadioButton>("FType_0"));
        QTest::keyClick(The<QCheckBox>("chkLoop"), Qt::Key_Space);
        QTest::keyClick(Slider("sldTempo"), Qt::Key_PageUp);
        QTest::keyClick(Slider("sldVolume"), Qt::Key_PageDown);
        QCOMPARE(Held(), QString("tuning 1 sound 24 tempo 129 129 capo 2 2 type 0 loop 1 speed 15 "
                                 "volume -800"));
        QCOMPARE(The<QLabel>("lblCapo")->text(), QString("2"));
        QCOMPARE(Button("cmdCreate")->text(), QString("Create MIDI File"));
        Click(The<QRadioButton>("FType_1"));
        QCOMPARE(Button("cmdCreate")->text(), QString("Create Play File"));
        QTest::keyClick(The<QComboBox>("Combo1"), Qt::Key_Up);  // settings outlast the test
    }

    void TuningChosenInTheMidiFormIsKeptWithTheTune()
    {
        OpenMidi();
        QTest::keyClick(The<QComboBox>("Combo1"), Qt::Key_Down);
        QCOMPARE(The<QComboBox>("Combo1")->currentText(), QString("Dropped D"));
        QCOMPARE(Core().tune[0].Slot(4), std::string("1"));
        QCOMPARE(Setting("Guitar", "Tuning"), std::string("1"));
        QTest::keyClick(The<QComboBox>("Combo1"), Qt::Key_Up);
    }

    void SoundAndTempoOfTheMidiFormAreRememberedByExit()
    {
        OpenMidi();
        QTest::keyClick(The<QComboBox>("Combo2"), Qt::Key_Up);
        QTest::keyClick(Slider("HSlider1"), Qt::Key_Left);
        Click(Button("cmdExit"));
        QTRY_VERIFY(IsGone("frmBldMidi"));
        QCOMPARE(Setting("Guitar", "Instrument"), std::string("24"));
        QCOMPARE(Setting("Guitar", "Tempo"), std::string("129"));
        Core().platform.settings.Set("Guitar", "Instrument", "25");
        Core().platform.settings.Set("Guitar", "Tempo", "130");
    }

    void BuildThatFailsShowsItsFileBehindTheBox()
    {
        TypeTune();
        Core().tune[1].Slot(1) = kDcAlFine;  // without a Fine it goes round for ever
        OpenMidi();
        QString shown;
        QString said;
        InDialog<QMessageBox>([&](QMessageBox* box) {
            shown = Box("txtFile")->text();
            said = box->text();
            box->accept();
        });
        Click(Button("cmdCreate"));
        QVERIFY(said.contains("never come to an end"));
        QVERIFY(shown.endsWith("/Playfile.mid"));
    }

    void OpeningAFormThatIsOpenBringsItToTheFront_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QString>("name");
        QTest::newRow("midi") << "mnuOpnMidi"
                              << "frmBldMidi";
        QTest::newRow("setup") << "mnuSetup"
                               << "frmMidiSetup";
        QTest::newRow("tuning") << "mnuTuning"
                                << "Guitar";
        QTest::newRow("copy") << "mnuCopy"
                              << "FrmCopyBox";
        QTest::newRow("about") << "mnuAbout"
                               << "frmAbout";
    }

    void OpeningAFormThatIsOpenBringsItToTheFront()
    {
        QFETCH(QString, menu);
        QFETCH(QString, name);
        Open(menu.toLatin1(), name.toLatin1());
        QWidget* const first = form;
        Window().activateWindow();
        QTRY_VERIFY(Window().isActiveWindow());
        Open(menu.toLatin1(), name.toLatin1());
        QCOMPARE(form, first);
        QCOMPARE(Window().findChildren<QWidget*>(name).size(), 1);
    }

    void TypedTempoCountsBeforeAMnemonic()
    {
        OpenMidi();
        Type(Box("Text1"), "77");
        QTest::keyClick(form, Qt::Key_X, Qt::AltModifier);
        QTRY_VERIFY(IsGone("frmBldMidi"));
        QCOMPARE(Setting("Guitar", "Tempo"), std::string("77"));
        Core().platform.settings.Set("Guitar", "Tempo", "130");
    }

    void TuneIsPlayedToItsEndAgainAndAgain()
    {
        TypeTune();
        OpenMidi();
        Slider("HSlider1")->setValue(300);
        Click(Button("cmdCreate"));
        QVERIFY(Box("txtFile")->text().endsWith("/Playfile.mid"));
        QVERIFY(QFile::exists(Box("txtFile")->text()));
        QVERIFY(!Button("cmdCreate")->isEnabled());
        QVERIFY(Button("cmdClear")->isEnabled());
        QVERIFY(Button("cmdPlay")->hasFocus());
        for (int i = 0; i < 2; ++i) {
            QTest::keyClick(Button("cmdPlay"), Qt::Key_Return);
            QVERIFY(Button("cmdStop")->hasFocus());
            QVERIFY(!Button("cmdPlay")->isEnabled());
            QVERIFY(!The<QCheckBox>("chkLoop")->isEnabled());
            QTRY_VERIFY_WITH_TIMEOUT(Button("cmdPlay")->hasFocus(), 3000);
            QVERIFY(!Button("cmdStop")->isEnabled());
            QVERIFY(The<QCheckBox>("chkLoop")->isEnabled());
        }
    }

    void LoopPlaysUntilStop()
    {
        TypeTune();
        OpenMidi();
        Slider("HSlider1")->setValue(300);
        Click(Button("cmdCreate"));
        The<QCheckBox>("chkLoop")->click();
        Slider("sldTempo")->setValue(30);
        Click(Button("cmdPlay"));
        QTest::qWait(1200);
        QVERIFY(Button("cmdStop")->isEnabled());
        Click(Button("cmdStop"));
        QVERIFY(Button("cmdPlay")->hasFocus());
        Click(Button("cmdClear"));
        QVERIFY(Button("cmdCreate")->isEnabled());
        QVERIFY(!program->player.HasTune());
        Click(Button("cmdPlay"));  // nothing to play
        QVERIFY(!Button("cmdStop")->isEnabled());
        Click(Button("cmdCreate"));
        QVERIFY(program->player.HasTune());
    }

    void EndOfTheTuneSparesWhatIsBeingTyped()
    {
        OpenMidi();
        Type(Box("Text1"), "1");
        Core().frmBldMidi.OnChange();
        QCOMPARE(Box("Text1")->text(), QString("1"));
        QTest::keyClicks(Box("Text1"), "50");
        QTest::keyClick(Box("Text1"), Qt::Key_Return);
        QCOMPARE(Slider("HSlider1")->value(), 150);
    }

    void MidiClosedByTheSystemIsUnloaded()
    {
        OpenMidi();
        The<QRadioButton>("FType_0")->click();
        QCOMPARE(Button("cmdCreate")->text(), QString("Create MIDI File"));
        form->close();
        QVERIFY(!Core().frmBldMidi.Loaded);
        QTRY_VERIFY(IsGone("frmBldMidi"));
        QVERIFY(!Core().frmBldMidi.OnChange);
        OpenMidi();
        QVERIFY(The<QRadioButton>("FType_1")->isChecked());
    }

    void SetupKeepsTheDeviceOnlyByExit()
    {
        Open("mnuSetup", "frmMidiSetup");
        QCOMPARE(form->windowTitle(), QString("Midi Setup"));
        QVERIFY(The<QComboBox>("ComboMidiOut")->count() >= 1);
        form->close();
        QTRY_VERIFY(IsGone("frmMidiSetup"));
        QCOMPARE(Setting("Prefs", "MIDIDEVICE"), std::string("none"));
        Open("mnuSetup", "frmMidiSetup");
        QTest::keyClick(form, Qt::Key_X, Qt::AltModifier);
        QTRY_VERIFY(IsGone("frmMidiSetup"));
        QCOMPARE(Setting("Prefs", "MIDIDEVICE"), std::string("-1"));
        QVERIFY(!Core().frmMidiSetup.Visible);
    }

    void DeviceIsChosenInTheList()
    {
        Open("mnuSetup", "frmMidiSetup");
        Core().frmMidiSetup.ComboMidiOut = {"MIDI mapper", "A port", "Another port"};
        QEvent activation(QEvent::WindowActivate);
        QApplication::sendEvent(form, &activation);
        QTest::keyClick(The<QComboBox>("ComboMidiOut"), Qt::Key_Down);
        QTest::keyClick(The<QComboBox>("ComboMidiOut"), Qt::Key_Down);
        QCOMPARE(The<QComboBox>("ComboMidiOut")->currentText(), QString("Another port"));
        Click(Button("cmdExit"));
        QTRY_VERIFY(IsGone("frmMidiSetup"));
        QCOMPARE(Setting("Prefs", "MIDIDEVICE"), std::string("1"));
        Core().platform.settings.Set("Prefs", "MIDIDEVICE", "-1");
    }

    void ChosenTuningFillsTheBoxesAndMarksNoText()
    {
        Open("mnuTuning", "Guitar");
        QTest::keyClick(The<QComboBox>("Combo1"), Qt::Key_Down);
        QCOMPARE(The<QComboBox>("Combo1")->currentText(), QString("Dropped D"));
        QString pitches;
        for (int i = 0; i < 6; ++i) {
            auto* box = form->findChild<QLineEdit*>(QString("Text1_%1").arg(i));
            pitches += box->text() + ' ';
            QVERIFY(!box->hasSelectedText());
        }
        QCOMPARE(pitches, QString("64 59 55 50 45 38 "));
        QCOMPARE(int{Core().tunings.CurTuning[5]}, 38);
    }

    void TuningFormsDiffer_data()
    {
        QTest::addColumn<QString>("instrument");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("strings");
        QTest::newRow("Guitar") << "mnuGuitar"
                                << "Guitar" << 6;
        QTest::newRow("banjo") << "mnuBanjo"
                               << "banjo" << 5;
        QTest::newRow("bass") << "mnuMandolin"
                              << "bass" << 4;
    }

    void TuningFormsDiffer()
    {
        QFETCH(QString, instrument);
        QFETCH(QString, name);
        QFETCH(int, strings);
        Window().findChild<QAction*>(instrument)->trigger();
        Open("mnuTuning", name.toLatin1());
        QCOMPARE(form->windowTitle(), QString("Tuning for %1 String Instrument").arg(strings));
        for (int i = 0; i < 6; ++i)
            QCOMPARE(form->findChild<QLineEdit*>(QString("Text1_%1").arg(i)) != nullptr,
                     i < strings);
        const bool guitar = strings == 6;
        QCOMPARE(Button("cmdDefault")->isVisible(), !guitar);

        auto* names = The<QComboBox>("Combo1");
        const int count = names->count();
        Type(Box("AddTitle"), "My own");
        Type(Box("Text1_0"), "70");
        QTest::keyClick(Box("Text1_0"), Qt::Key_Return);
        QCOMPARE(names->count(), count + guitar);
        if (!guitar)
            QTest::keyClick(Box("AddTitle"), Qt::Key_Return);
        QCOMPARE(names->currentText(), QString("My own"));
        QCOMPARE(Box("AddTitle")->text(), QString(" "));
        QCOMPARE(int{Core().tunings.CurTuning[0]}, 70);
        Box("AddTitle")->setFocus();
        QTest::keyClick(Box("AddTitle"), Qt::Key_Return);
        QCOMPARE(Button("cmdSave")->hasFocus(), guitar);

        Click(Button("cmdDelete"));
        QCOMPARE(names->count(), count);
        QCOMPARE(names->currentIndex(), 0);
        form->close();
        QTRY_VERIFY(IsGone(name.toLatin1()));
        Window().findChild<QAction*>("mnuGuitar")->trigger();
    }

    void TypingReplacesTheBlankOfANewName()
    {
        Open("mnuTuning", "Guitar");
        auto* AddTitle = Box("AddTitle");
        QTest::mouseClick(AddTitle, Qt::LeftButton, {}, QPoint(AddTitle->width() - 9, 9));
        QTest::qWait(20);
        QTest::keyClicks(AddTitle, "Low");
        QTest::keyClick(AddTitle, Qt::Key_Return);
        QCOMPARE(The<QComboBox>("Combo1")->currentText(), QString("Low"));
        QVERIFY(Button("cmdSave")->hasFocus());
    }

    void PageSetupDisablesTheMainForm()
    {
        OpenMidi();
        QWidget* midi = form;
        Window().activateWindow();
        Open("mnuPageSet", "frmPgSetup");
        QVERIFY(!Window().isEnabled());
        QVERIFY(form->isEnabled() && midi->isEnabled());
        QTest::keyClick(form, Qt::Key_X, Qt::AltModifier);
        QTRY_VERIFY(IsGone("frmPgSetup"));
        QVERIFY(!Core().frmPgSetup);
        QVERIFY(Window().isEnabled());
        QTRY_VERIFY(Window().isActiveWindow());
        QVERIFY(Window().findChild<QWidget*>("StaffBox")->hasFocus());
    }

    void EnterWalksThroughPageSetup()
    {
        Open("mnuPageSet", "frmPgSetup");
        QVERIFY(Box("Text1")->hasFocus());
        QTest::keyClicks(Box("Text1"), "A tune");
        QTest::keyClick(Box("Text1"), Qt::Key_Return);
        QVERIFY(Box("Text2")->hasFocus());
        QTest::keyClick(Box("Text2"), Qt::Key_Return);
        QVERIFY(Box("Text3")->hasFocus());
        QTest::keyClicks(Box("Text3"), "by me");
        QTest::keyClick(Box("Text3"), Qt::Key_Return);
        QVERIFY(Button("cmdPgExit")->hasFocus());
        Type(Box("txtTop"), "0.5");
        QTest::keyClick(Button("cmdPgExit"), Qt::Key_Return);
        QTRY_VERIFY(IsGone("frmPgSetup"));
        QCOMPARE(Core().tune[0].ChordText, std::string("A tune"));
        QCOMPARE(Core().tune[0].Slot(2), std::string("by me"));
        QCOMPARE(Setting("Prefs", "PageTop"), std::string("0.5"));
    }

    void PageSetupClosedByTheSystemDropsTheTexts()
    {
        Open("mnuPageSet", "frmPgSetup");
        Type(Box("Text1"), "A tune");
        Type(Box("txtTop"), "0.75");
        The<QCheckBox>("chkJustify")->click();
        QVERIFY(Core().page.TitleCentered);
        form->close();
        QTRY_VERIFY(IsGone("frmPgSetup"));
        QCOMPARE(Core().tune[0].ChordText, std::string(""));
        QCOMPARE(Setting("Prefs", "PageTop"), std::string("0.75"));
        QCOMPARE(Setting("Prefs", "TitleCentered"), std::string("True"));
        QVERIFY(Window().isEnabled());
    }

    void BodyFontIsHeldToItsSizes()
    {
        Open("mnuPageSet", "frmPgSetup");
        Type(Box("Text1"), "Typed before");
        InDialog<QFontDialog>([](QFontDialog* dialog) {
            dialog->setCurrentFont(QFont("Liberation Serif", 9));
            InDialog<QMessageBox>([](QMessageBox* box) {
                QCOMPARE(box->windowTitle(), QString("Font Size Error"));
                box->accept();
            });
            dialog->accept();
        });
        Click(Button("cmdBodyFont"));
        QCOMPARE(The<QLabel>("LblBodyFontName")->text(), QString("Liberation Serif"));
        QCOMPARE(The<QLabel>("lblBodyFontSize")->text(), QString("10"));
        QTest::qWait(50);  // the form is the active one again, and keeps what was typed
        QCOMPARE(Box("Text1")->text(), QString("Typed before"));
        form->close();
    }

    void FontDialogBeginsWithTheFontInForceAndKeepsIt_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"Arial", "Liberation Sans", "Liberation Serif", "No Such Font"})
            QTest::newRow(name) << name;
    }

    void FontDialogBeginsWithTheFontInForceAndKeepsIt()
    {
        QFETCH(QString, name);
        Core().page.TitleFontName = name.toStdString();
        Core().page.TitleFontSize = 14.5F;
        Open("mnuPageSet", "frmPgSetup");
        const QString offered = ChooseTitleFont([](QFontDialog*) {});
        if (FontAvailable(name))
            QCOMPARE(offered, QFontInfo(QFont(name)).family());
        QCOMPARE(QString::fromStdString(Core().page.TitleFontName), name);
        QCOMPARE(Core().page.TitleFontSize, 14.5F);
        QCOMPARE(The<QLabel>("lblTitleFontName")->text(), name);
        form->close();
    }

    void ArialCanBeChosenAgain()
    {
        Core().page.TitleFontName = "Liberation Serif";
        Open("mnuPageSet", "frmPgSetup");
        const bool installed = QFontDatabase::hasFamily("Arial");
        ChooseTitleFont([&](QFontDialog* dialog) {
            dialog->setCurrentFont(QFont(installed ? "Arial" : "Liberation Sans", 16));
        });
        QCOMPARE(Core().page.TitleFontName, std::string("Arial"));
        QCOMPARE(Core().page.TitleFontSize, 16.0F);
        form->close();
    }

    void PrintDialogOffersTheWholeTuneInItsOrderOnly()
    {
        QString offered = "no dialog";
        InDialog<QPrintDialog>([&](QPrintDialog* dialog) {
            offered.clear();
            for (const char* name : {"copies", "printRange", "pagesRadioButton", "from", "to",
                                     "pageSetCombo", "reverse"})
                if (dialog->findChild<QWidget*>(name)->isEnabled())
                    offered += QString(name) + ' ';
            dialog->reject();
        });
        Window().findChild<QAction*>("mnuPrint")->trigger();
        QCOMPARE(offered, QString("copies "));
    }

    void AboutNamesTheManualAndOpensIt()
    {
        Open("mnuAbout", "frmAbout");
        auto* words = The<QLabel>("Label2");
        const QString manual =
            QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../docs/manual.html");
        if (!QFile::exists(manual))
            QSKIP("The manual has not been built.");
        QVERIFY(words->openExternalLinks());
        QVERIFY(words->text().contains("href=\"" + QUrl::fromLocalFile(manual).toString() + '"'));
        words->setFocus();
        QTest::keyClick(words, Qt::Key_Tab);
        QVERIFY(words->hasSelectedText());  // the link, which Enter follows
        QVERIFY(SplashForm(nullptr).findChild<QLabel*>("Label2")->text().contains("Help, About"));
    }

    void ComingBackFromAnotherFormActivatesPageSetup()
    {
        OpenMidi();
        QWidget* midi = form;
        Window().activateWindow();
        Open("mnuPageSet", "frmPgSetup");
        Type(Box("Text1"), "A tune");
        Box("txtTop")->setFocus();
        midi->activateWindow();
        QTRY_VERIFY(midi->isActiveWindow());
        form->activateWindow();
        QTRY_VERIFY(form->isActiveWindow());
        QTRY_COMPARE(Box("Text1")->text(), QString(""));
        QVERIFY(Box("Text1")->hasFocus());
        form->close();
    }

    void TheDisabledMainFormGivesTheFocusBack()
    {
        Open("mnuPageSet", "frmPgSetup");
        Type(Box("Text1"), "A tune");
        Window().activateWindow();
        QTest::qWait(50);
        QVERIFY(form->isActiveWindow());
        QCOMPARE(Box("Text1")->text(), QString("A tune"));
        form->close();
        QTRY_VERIFY(Window().isActiveWindow());
    }

    void EveryControlIsNamedAndReachedByTab_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QString>("name");
        QTest::newRow("midi") << "mnuOpnMidi"
                              << "frmBldMidi";
        QTest::newRow("setup") << "mnuSetup"
                               << "frmMidiSetup";
        QTest::newRow("tuning") << "mnuTuning"
                                << "Guitar";
        QTest::newRow("page") << "mnuPageSet"
                              << "frmPgSetup";
    }

    void EveryControlIsNamedAndReachedByTab()
    {
        QFETCH(QString, menu);
        QFETCH(QString, name);
        Open(menu.toLatin1(), name.toLatin1());
        QVERIFY(form->width() <= 1024 && form->height() <= 720);
        QSet<QWidget*> reached;
        for (int i = 0; i < 40; ++i) {
            QTest::keyClick(form, Qt::Key_Tab);
            reached.insert(form->focusWidget());
        }
        for (auto* widget : form->findChildren<QWidget*>()) {
            // Tab stops once at a group of options.
            if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isEnabled() ||
                !widget->isVisible() || widget->window() != form)
                continue;
            const QByteArray control = widget->objectName().toLatin1();
            QVERIFY2(!widget->accessibleName().isEmpty(), control);
            QVERIFY2(!widget->toolTip().isEmpty(), control);
            QVERIFY2(reached.contains(widget) || control == "FType_0", control);
        }
        form->close();
    }
};

int main(int argc, char** argv)
{
    ScratchUser user;
    qputenv("QUILLON_AUDIO_DRIVER", "file");
    qputenv("QUILLON_AUDIO_FILE", kAudioFile);
    QApplication application(argc, argv);
    FormsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "forms_test.moc"
