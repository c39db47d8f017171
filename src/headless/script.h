// Scripts of keys, clicks and commands: reads their lines and prints what they ask for.
//
// A derived class decides what a script is played on: the handlers themselves, or the real window.

#pragma once

#include "headless/scripted_platform.h"
#include "history/history.h"
#include "shell/main_win.h"
#include "shell/menus.h"

#include <iosfwd>
#include <string>
#include <string_view>

namespace quillon {

class Script {
public:
    virtual ~Script() = default;

    /// Plays one line. False when the script does not go on: see Status.
    bool Play(std::string_view line);

    /// 0 done, 1 ended by a run-time fault, 2 ended by an unknown command.
    int Status() const { return status; }

protected:
    /// All must outlive the script. `dialogAnswers` takes the answers that the script gives, and
    /// has the boxes that were shown.
    Script(MainWin& mainWin, ScriptedDialogs& dialogAnswers, std::ostream& output)
        : win(mainWin), answers(dialogAnswers), out(output)
    {
    }

    /// Whether the boxes of FrmCopyBox have the focus.
    bool InCopyBox() const;

private:
    // What the user of the script does.
    virtual void Menu(const MenuEntry& entry) = 0;   // whether it is enabled or not
    virtual void Press(std::string_view name) = 0;   // a button or label
    virtual void Key(const std::string& name) = 0;   // "Left", "Shift+F8"
    virtual void Type(const std::string& text) = 0;  // bytes of Windows-1252
    virtual void Toolbar(int button) = 0;
    virtual void Click(double x, double y) = 0;  // points on StaffBox
    virtual void Tick() = 0;
    virtual void Copy(const std::string& from, const std::string& to) = 0;
    virtual bool Ended() const = 0;  // the program has ended

    virtual void Undo(int count) { Steps()->Undo(count); }
    virtual void Redo(int count) { Steps()->Redo(count); }

    virtual History* Steps() = 0;

    bool Run(std::string_view command, const std::string& text);
    bool Act(std::string_view command, std::string rest);
    bool Answer(std::string_view command, const std::string& text);
    bool GoBackOrForth(std::string_view command, std::string rest);
    bool Print(std::string_view command);
    bool RunMenu(const MenuEntry* entry);
    void PrintState();
    void PrintTable();
    void PrintLog();
    void PrintShown();
    void PrintSteps();

    MainWin& win;
    ScriptedDialogs& answers;
    std::ostream& out;
    int status = 0;
};

/// The name of a control, as scripts give it and print it.
std::string_view NameOf(Control control);

/// The control of that name, Control::None if there is none.
Control ControlNamed(std::string_view name);

}  // namespace quillon
