#include "qt/program.h"

#include <QApplication>
#include <QIcon>

namespace quillon {

namespace {

constexpr const char* kDesktopId = "org.quillon.Quillon";  // desktop file and icon are called so

/// Where the icon is for a program that the desktop does not know, as after a build.
constexpr const char* kIconsBesideProgram = "/../share/icons/hicolor/128x128/apps";

}  // namespace

Program::Program(std::string theCommandLine) : commandLine(std::move(theCommandLine))
{
    QApplication::setApplicationName("Quillon");  // a display name would stand in every caption
    QApplication::setDesktopFileName(kDesktopId);
    QIcon::setFallbackSearchPaths({QApplication::applicationDirPath() + kIconsBesideProgram});
    QApplication::setWindowIcon(QIcon::fromTheme(kDesktopId));
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
