#include "qt/program.h"

#include <QApplication>

namespace quillon {

Program::Program(std::string theCommandLine) : commandLine(std::move(theCommandLine))
{
    QApplication::setApplicationName("Quillon");  // a display name would stand in every caption
    QApplication::setDesktopFileName("quillon");
    QApplication::setQuitOnLastWindowClosed(false);  // the main form's end is the program's
    LoadNotationFont();
    runner.KeepWork = [this] { rescue.Refresh(); };
    runner.KeepAtFault = [this] { return rescue.Keep(); };
}

bool Program::Start()
{
    bool loaded = false;
    runner.Run("Start", [&] { loaded = win.Load(); });
    if (!loaded)
        return false;
    window = std::make_unique<MainWindow>(win, system, runner, commandLine);
    endFromOutside = std::make_unique<EndFromOutside>([this] { window->EndUnasked(); });
    window->show();
    return true;
}

}  // namespace quillon
