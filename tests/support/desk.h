// The whole main form on a fake platform, in a directory of its own that is both the current one
// and the program's folder.

#pragma once

#include "shell/main_win.h"
#include "support/fakes.h"
#include "support/faults.h"
#include "support/state_text.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

namespace quillon {

class Desk : public testing::Test {
protected:
    Desk() { system.Folder = folder.Path(); }

    /// Starts the program without a file and lets the splash go.
    void Start()
    {
        ASSERT_TRUE(win.Load());
        win.FirstActivate("");
        win.SplashClosed();
        system.Forms.clear();
    }

    /// Opens a file by way of the dialog.
    void Open(const std::string& path)
    {
        dialogs.Files.push_back(path);
        win.mnuOpen();
    }

    void SaveAs(const std::string& path)
    {
        dialogs.Files.push_back(path);
        win.mnuSaveAs();
    }

    /// Types characters on StaffBox; '\r' is Enter, which on cmdNext presses it.
    void Type(std::string_view characters)
    {
        for (const char c : characters) {
            if (win.form.Focus == Control::cmdNext) {
                if (c == '\r')
                    win.editor.cmdNext();
                continue;
            }
            win.editor.StaffBoxKeyDown(c == '\r' ? c : 0);
            win.editor.StaffBoxKeyPress(c);
        }
    }

    std::string State() const { return StateText(win.tune, win.form, win.view); }
    std::string Table() const { return TableText(win.tune); }

    TemporaryDirectory folder;
    FakeDialogs dialogs;
    FakeSettings settings;
    FakeSystem system;
    FakePrinter printer;
    FakeClipboard clipboard;
    FakePlayer player;
    FakeMidiPorts midiPorts;
    FixedTextMetrics metrics;
    MainWin win{
        {dialogs, settings, system, printer, clipboard, player, midiPorts},
        metrics
    };
};

}  // namespace quillon
