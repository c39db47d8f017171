// The scripted window: plays a script of keys, clicks and commands against the editor and prints
// what the script asks for. Keys and clicks reach the same handlers as in the window.

#pragma once

#include "shell/main_win.h"
#include "shell/scripted_platform.h"

#include <iosfwd>
#include <string>
#include <string_view>

namespace quillon {

struct MenuEntry;

class Scenario {
public:
    /// The program has started without a command line. Tuning files lie in `programFolder`.
    Scenario(std::string programFolder, std::ostream& output);

    /// Plays one line. False when the script does not go on: see Status.
    bool Play(std::string_view line);

    /// 0 done, 1 ended by a run-time fault, 2 ended by an unknown command.
    int Status() const { return status; }

    MainWin& Window() { return win; }

private:
    bool Run(std::string_view command, const std::string& rest);
    bool RunMenu(std::string_view name);
    void RunEntry(const MenuEntry& entry);
    bool InCopyBox() const;
    bool Press(std::string_view name);
    bool PressKey(const std::string& name);
    bool PressButton(Control button);
    void SendKey(int keyCode, char character);
    void TypeIntoBox(std::string& text, std::size_t& caret, char character);
    void PrintState();
    void PrintTable();
    void PrintLog();
    void PrintShown();

    FixedTextMetrics metrics;
    ScriptedPlatform platform;
    MainWin win;
    std::ostream& out;
    std::size_t copyBoxCaret = 0;
    int status = 0;
};

}  // namespace quillon
