#include "qt/program.h"

#include <QApplication>

namespace quillon {

Program::Program(std::string theCommandLine) : commandLine(std::move(theCommandLine))
{
    QApplication::setApplicationDisplayName("Quillon");
    QApplication::setQuitOnLastWindowClosed(false);  // the main form's end is the program's
    LoadNotationFont();
    runner.Rescue = [this] {
        return win.form.Saved == 0 ? WriteRescueCopy(win, system.ProgramFolder()) : std::string();
    };
}

bool Program::Start()
{
    bool loaded = false;
    runner.Run("Start", [&] { loaded = win.Load(); });
    if (!loaded)
        return false;
    window = std::make_unique<MainWindow>(win, system, runner, commandLine);
    window->show();
    return true;
}

}  // namespace quillon
