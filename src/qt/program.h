// The whole editor as it runs on the desktop: the core, the platform's implementation, and the
// window.

#pragma once

#include "qt/clipboard.h"
#include "qt/dialogs.h"
#include "qt/editor_window.h"
#include "qt/file_exchange.h"
#include "qt/font_metrics.h"
#include "qt/printer.h"
#include "qt/runner.h"
#include "qt/settings.h"
#include "qt/sound_loader.h"
#include "qt/system.h"
#include "shell/run_keeper.h"

namespace quillon {

/// Needs a QApplication.
class Program {
public:
    /// File dialogs begin in `startFolder`; "" is the current directory.
    explicit Program(std::string commandLine, const std::string& startFolder = {});
    ~Program();

    /// False when the program cannot start; a box has said why.
    bool Start();

    // Each member may use those declared before it.
    Runner runner;
    QtSettings settings;
    QtDialogs dialogs;
    QtSystem system;
    QtPrinter printer{runner, settings};
    QtClipboard clipboard{settings};
    LoadedPlayer player;       // the MIDI form's
    LoadedPlayer stripPlayer;  // sounds on its own
    LoadedMidiPorts midiPorts;
    FontMetrics metrics;
    MainWin win{
        {dialogs, settings, system, printer, clipboard, player, midiPorts},
        metrics
    };
    std::unique_ptr<EditorWindow> window;
    std::optional<FileExchange> exchange;
    std::optional<RunKeeper> keeper;  // when the start is over
    std::unique_ptr<EndFromOutside> endFromOutside;

private:
    void KeepRun();
    void FillRescued(QMenu& menu);
    void StartAgain(const std::string& journal) const;

    std::string commandLine;
    std::string startFolder;
    std::string resumed;  // journal of the run that this one takes over from, "" without one
};

}  // namespace quillon
