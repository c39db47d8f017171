// Pictures of every form, for looking at.
//
//     form_pictures FOLDER [dark] [TUNE]
//
// The scale comes from QT_SCALE_FACTOR, the size of the text, in points, from FONT_SIZE.

#include "qt/program.h"
#include "scratch_user.h"

#include <QApplication>
#include <QPalette>
#include <QScreen>
#include <QStyleFactory>
#include <QWidget>

using namespace quillon;

namespace {

QPalette DarkPalette()
{
    QPalette palette(QColor(0x35, 0x38, 0x3c), QColor(0x2a, 0x2d, 0x30));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x8f, 0xd1));
    return palette;
}

void Settle(int milliseconds = 50)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace

int main(int argc, char** argv)
{
    const QString folder = QFileInfo(argc > 1 ? argv[1] : ".").absoluteFilePath();
    const bool dark = argc > 2 && QString(argv[2]) == "dark";
    const QString tune = argc > 2 + dark ? QFileInfo(argv[2 + dark]).absoluteFilePath() : "";
    ScratchUser user;
    qputenv("QUILLON_AUDIO_DRIVER", "file");
    QApplication application(argc, argv);
    if (const int size = qEnvironmentVariableIntValue("FONT_SIZE")) {
        QFont font = QApplication::font();
        font.setPointSize(size);
        QApplication::setFont(font);
    }
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    if (dark)
        QApplication::setPalette(DarkPalette());
    Program program(tune.toStdString());
    if (!program.Start())
        return EXIT_FAILURE;
    const QString look =
        QString("%1@%2.png").arg(dark ? "-dark" : "").arg(qApp->devicePixelRatio());
    for (const QSize& size : {QSize(1024, 768), QSize(1600, 1000)}) {
        program.window->resize(size);
        Settle(700);  // long enough for the cursor to show
        program.window->grab().save(folder + QString("/main-%1%2").arg(size.width()).arg(look));
    }
    for (Form form : {Form::Splash, Form::frmAbout, Form::FrmCopyBox})
        program.system.Show(form);
    program.win.mnuOpnMidi();
    program.win.mnuSetup();
    for (TuningForm& tuning : program.win.tuningForms) {
        tuning.Show();
        program.system.Show(tuning.design.Name);
    }
    program.win.mnuPageSet();
    Settle();
    for (QWidget* form : QApplication::topLevelWidgets())
        if (form->isVisible() && form != program.window.get())
            form->grab().save(folder + '/' + form->objectName() + look);
    return EXIT_SUCCESS;
}
