#include "qt/program.h"

#include "qt/text.h"

#include <QApplication>
#include <QIcon>

namespace quillon {

namespace {

/// Seen from the program's folder, installed or built. To ask the desktop's theme for it would take
/// a tenth of the start.
constexpr const char* kIcon = "/../share/icons/hicolor/128x128/apps/org.quillon.Quillon.png";

}  // namespace

Program::Program(std::string theCommandLine, const std::string& startFolder)
    : dialogs(runner, PathFromBytes(startFolder)), commandLine(std::move(theCommandLine))
{
    QApplication::setApplicationName("Quillon");  // a display name would stand in every caption
    QApplication::setDesktopFileName("org.quillon.Quillon");
    QApplication::setWindowIcon(QIcon(QApplication::applicationDirPath() + kIcon));
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
    window = std::make_unique<EditorWindow>(win, system, runner, commandLine);
    endFromOutside = std::make_unique<EndFromOutside>([this] { window->EndUnasked(); });
    window->show();
    return true;
}

}  // namespace quillon
