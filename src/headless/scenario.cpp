#include "headless/scenario.h"

#include "shell/steps.h"

#include <algorithm>

namespace quillon {

namespace {

constexpr int kUnknownKey = 0;

// Only text boxes know them.
constexpr int kKeyEnd = 35;
constexpr int kKeyHome = 36;

constexpr char kEnter = '\r';
constexpr char kEscape = '\x1b';

struct KeyRow {
    std::string_view Name;
    int Code;
    char Character;  // 0: the key has none
};

constexpr KeyRow kKeys[] = {
    {"Enter",     kKeyEnter,     kEnter },
    {"Backspace", kKeyBackspace, '\b'   },
    {"Delete",    kKeyDelete,    0      },
    {"Left",      kKeyLeft,      0      },
    {"Right",     kKeyRight,     0      },
    {"Up",        kKeyUp,        0      },
    {"Down",      kKeyDown,      0      },
    {"Home",      kKeyHome,      0      },
    {"End",       kKeyEnd,       0      },
    {"Space",     kUnknownKey,   ' '    },
    {"Escape",    kUnknownKey,   kEscape},
};

MainWin& Started(MainWin& win)
{
    win.Load();
    win.FirstActivate("");
    win.SplashClosed();
    return win;
}

}  // namespace

Scenario::Scenario(std::string programFolder, std::ostream& output)
    : Script(win, platform.dialogs, output), platform(std::move(programFolder)),
      win(platform.get(), metrics), history(ValuesOf(Started(win)))
{
}

/// One event of the window: `handler` runs to its end. `name` is that of the step that it may make.
template <typename Handler>
void Scenario::Event(Input input, const std::string& name, const Handler& handler)
{
    history.Begin();
    handler();
    history.Observe(input, name);
}

void Scenario::Menu(const MenuEntry& entry)
{
    if (!IsEnabled(entry, win))
        return;
    Event(Input::Command, StepName(entry), [&] {
        entry.Run(win);
        if (entry.Name == std::string_view("mnuCopy"))
            win.form.BoxCaret = 0;
    });
}

void Scenario::Press(std::string_view name)
{
    if (name == "lblMeasNum")
        Event(Input::Command, kGoToStep, [&] { win.editor.lblMeasNum(); });
    else if (name == "cmdCopyMeasure" && InCopyBox())
        Event(Input::Command, {}, [&] { win.editor.cmdCopyMeasure(); });
    else
        PressButton(ControlNamed(name));
}

/// Clicks a button, which takes the focus first. Labels ignore clicks.
void Scenario::PressButton(Control button)
{
    if (button == Control::None || (button == Control::cmdRefresh && !win.form.cmdRefreshEnabled))
        return;
    Event(Input::Command, StepName(button, win.form), [&] {
        win.editor.SetFocus(button);
        if (button == Control::cmdNext)
            win.editor.cmdNext();
        else if (button == Control::cmdPrevious)
            win.editor.cmdPrevious();
        else if (button == Control::cmdRefresh)
            win.cmdRefresh();
        else if (button == Control::cmdRest)
            win.editor.cmdRest();
    });
}

void Scenario::Key(const std::string& name)
{
    const MenuEntry* entry = InCopyBox() ? nullptr : FindShortcut(name);
    const bool onButton = win.form.Focus >= Control::cmdNext && win.form.Focus <= Control::cmdRest;
    if (entry) {
        Menu(*entry);
    } else if (onButton && (name == "Enter" || name == "Space")) {
        PressButton(win.form.Focus);
    } else {
        const auto* key = std::ranges::find(kKeys, name, &KeyRow::Name);
        if (key != std::end(kKeys))
            SendKey(key->Code, key->Character);
        else
            SendKey(kUnknownKey, 0);
    }
}

void Scenario::Type(const std::string& text)
{
    for (char character : text)
        SendKey(kUnknownKey, character);
}

void Scenario::Toolbar(int button)
{
    Event(Input::Command, kToolbarStep, [&] { win.editor.Toolbar1(button); });
}

void Scenario::Click(double x, double y)
{
    Event(Input::Command, kClickStep, [&] {
        win.editor.SetFocus(Control::StaffBox);
        win.editor.StaffBoxMouseDown(x, y);
    });
}

void Scenario::Tick()
{
    if (win.form.Timer1Enabled)
        win.editor.Timer1();
}

void Scenario::Copy(const std::string& from, const std::string& to)
{
    Event(Input::Command, {}, [&] {
        win.editor.mnuCopy();
        win.form.FrmCopyBox = {from, to};
        win.editor.cmdCopyMeasure();
    });
}

/// A key down, then the key press if the key has a character, for whatever has the focus.
void Scenario::SendKey(int keyCode, char character)
{
    switch (win.form.Focus) {
    case Control::StaffBox:
        Event(character == kEnter ? Input::Enter : Input::Key, {}, [&] {
            win.editor.StaffBoxKeyDown(keyCode);
            if (character != 0)
                win.editor.StaffBoxKeyPress(character);
        });
        break;
    case Control::txtRptBracket:
        Event(Input::Key, {}, [&] { KeyInBracketBox(keyCode, character); });
        break;
    case Control::Text1:
    case Control::Text2:
        Event(Input::Command, {}, [&] { KeyInCopyBox(keyCode, character); });
        break;
    default:
        break;
    }
}

void Scenario::KeyInBracketBox(int keyCode, char character)
{
    if (character == kEnter)
        win.editor.txtRptBracketEnter();
    else
        EditText(win.form.txtRptBracket.Text, keyCode, character);
}

void Scenario::KeyInCopyBox(int keyCode, char character)
{
    auto& box = win.form.FrmCopyBox;
    if (character == kEnter) {
        win.editor.CopyBoxEnter(win.form.Focus);
        win.form.BoxCaret = 0;
    } else if (character == kEscape) {
        win.editor.CopyBoxClosed();
    } else {
        EditText(win.form.Focus == Control::Text1 ? box.Text1 : box.Text2, keyCode, character);
    }
}

/// As any one-line box takes a key. A box that has just been filled with less text than was
/// before the caret has its caret at the end.
void Scenario::EditText(std::string& text, int keyCode, char character)
{
    std::size_t caret = std::min(static_cast<std::size_t>(win.form.BoxCaret), text.size());
    switch (keyCode) {
    case kKeyLeft:
        caret -= caret > 0;
        break;
    case kKeyRight:
        caret += caret < text.size();
        break;
    case kKeyHome:
        caret = 0;
        break;
    case kKeyEnd:
        caret = text.size();
        break;
    case kKeyBackspace:
        if (caret > 0)
            text.erase(--caret, 1);
        break;
    case kKeyDelete:
        text.erase(caret, 1);
        break;
    default:
        if (static_cast<unsigned char>(character) >= ' ')
            text.insert(caret++, 1, character);
        break;
    }
    win.form.BoxCaret = static_cast<int>(caret);
}

}  // namespace quillon
