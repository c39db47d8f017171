#include "qt/program.h"

#include "qt/text.h"

#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QProcess>

namespace quillon {

namespace {

/// Seen from the program's folder, installed or built. To ask the desktop's theme for it would take
/// a tenth of the start.
constexpr const char* kIcon = "/../share/icons/hicolor/128x128/apps/org.quillon.Quillon.png";

/// The environment variable that tells a run the journal of the one that it takes over from.
constexpr const char* kResume = "QUILLON_RESUME";

}  // namespace

Program::Program(std::string theCommandLine, const std::string& theStartFolder)
    : dialogs(runner, PathFromBytes(theStartFolder)), commandLine(std::move(theCommandLine)),
      startFolder(theStartFolder), resumed(qgetenv(kResume).toStdString())
{
    qunsetenv(kResume);
    QApplication::setApplicationName("Quillon");  // a display name would stand in every caption
    QApplication::setDesktopFileName("org.quillon.Quillon");
    QApplication::setWindowIcon(QIcon(QApplication::applicationDirPath() + kIcon));
    QApplication::setQuitOnLastWindowClosed(false);  // the main form's end is the program's
    LoadNotationFont();
}

Program::~Program()
{
    if (keeper && window->HasEndedInOrder())
        keeper->EndInOrder();
}

bool Program::Start()
{
    bool loaded = false;
    runner.Run("Start", [&] { loaded = win.Load(); });
    if (!loaded)
        return false;
    window = std::make_unique<EditorWindow>(win, system, runner, stripPlayer, commandLine);
    exchange.emplace(win, runner, dialogs, window.get());
    window->ImportFile = [this](const std::string& path) { exchange->ImportFile(path); };
    window->More().Import = [this] { exchange->Import(); };
    window->More().Export = [this] { exchange->Export(); };
    window->OnStarted = [this] { KeepRun(); };
    if (!resumed.empty())
        window->GreetNobody();
    endFromOutside = std::make_unique<EndFromOutside>([this] { window->EndUnasked(); });
    window->show();
    return true;
}

void Program::KeepRun()
{
    keeper.emplace(win, *runner.Steps, system.ProgramFolder());
    runner.Trouble = [this] { return keeper->Trouble(); };
    runner.KeepAtFault = [this] { return keeper->AtFault(); };
    runner.EndByFault = [this](bool startAgain) {
        const std::string journal = keeper->JournalPath();
        keeper->EndByFault();
        if (startAgain)
            StartAgain(journal);
    };
    window->More().FillRescued = [this](QMenu& menu) { FillRescued(menu); };
    if (!resumed.empty())
        runner.Run("Start again", [this] { keeper->OpenJournal(resumed, "Start Again"); });
}

/// Work that a run has left since this one began is there too.
void Program::FillRescued(QMenu& menu)
{
    const std::string folder = system.ProgramFolder();
    RescueEndedRuns(folder);
    for (const Rescued& rescued : RescuedIn(folder)) {
        const QString name =
            PathFromBytes(rescued.Name) + (rescued.Discarded ? " (discarded)" : "");
        QAction* action = menu.addAction(QString(name).replace('&', "&&"));
        action->setToolTip(PathFromBytes(rescued.Tune));
        QObject::connect(action, &QAction::triggered, window.get(), [this, rescued] {
            runner.Run(
                "Open", [&] { keeper->Open(rescued); }, Input::Command, "Open");
        });
    }
}

void Program::StartAgain(const std::string& journal) const
{
    QProcess next;
    next.setProgram(QApplication::applicationFilePath());
    next.setWorkingDirectory(PathFromBytes(startFolder));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(kResume, PathFromBytes(journal));
    next.setProcessEnvironment(environment);
    next.startDetached();
}

}  // namespace quillon
