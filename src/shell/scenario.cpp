#include "shell/scenario.h"

#include "shell/menus.h"

#include <algorithm>
#include <charconv>
#include <ostream>

namespace quillon {

namespace {

constexpr int kUnknownKey = 0;

struct KeyRow {
    std::string_view Name;
    int Code;
    char Character;  // 0: the key has none
};

constexpr KeyRow kKeys[] = {
    {"Enter",     kKeyEnter,     '\r'  },
    {"Backspace", kKeyBackspace, '\b'  },
    {"Delete",    kKeyDelete,    0     },
    {"Left",      kKeyLeft,      0     },
    {"Right",     kKeyRight,     0     },
    {"Up",        kKeyUp,        0     },
    {"Down",      kKeyDown,      0     },
    {"Space",     kUnknownKey,   ' '   },
    {"Escape",    kUnknownKey,   '\x1b'},
};

struct ControlRow {
    quillon::Control Control;
    std::string_view Name;
};

constexpr ControlRow kControls[] = {
    {Control::None,          "none"         },
    {Control::StaffBox,      "StaffBox"     },
    {Control::cmdNext,       "cmdNext"      },
    {Control::cmdPrevious,   "cmdPrevious"  },
    {Control::cmdRefresh,    "cmdRefresh"   },
    {Control::cmdRest,       "cmdRest"      },
    {Control::txtRptBracket, "txtRptBracket"},
    {Control::Text1,         "Text1"        },
    {Control::Text2,         "Text2"        },
};

std::string_view NameOf(Control control)
{
    for (const ControlRow& row : kControls)
        if (row.Control == control)
            return row.Name;
    return {};
}

constexpr const char* kIconNames[] = {"none", "stop", "question", "information"};

const char* OnOff(bool on)
{
    return on ? "on" : "off";
}

bool IsFunctionKey(std::string_view name)
{
    if (!name.starts_with('F'))
        return false;
    int number = 0;
    const char* end = name.data() + name.size();
    return std::from_chars(name.data() + 1, end, number).ptr == end && number >= 1 && number <= 12;
}

/// The first word of `rest`, which loses it.
std::string TakeWord(std::string& rest)
{
    const std::size_t start = std::min(rest.find_first_not_of(' '), rest.size());
    const std::size_t end = std::min(rest.find(' ', start), rest.size());
    std::string word = rest.substr(start, end - start);
    rest.erase(0, end);
    return word;
}

std::optional<double> TakeNumber(std::string& rest)
{
    const std::string word = TakeWord(rest);
    double number = 0;
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    if (word.empty() || result.ec != std::errc() || result.ptr != word.data() + word.size())
        return std::nullopt;
    return number;
}

std::optional<std::string> Answer(const std::string& rest)
{
    return rest == "cancel" ? std::nullopt : std::optional(rest);
}

/// As Quoted, with line ends as \r and \n.
std::string QuotedBoxText(std::string_view text)
{
    std::string quoted = "\"";
    for (char c : text) {
        const std::string one = Quoted({&c, 1});
        quoted += c == '\r' ? "\\r" : c == '\n' ? "\\n" : one.substr(1, one.size() - 2);
    }
    return quoted + '"';
}

}  // namespace

Scenario::Scenario(std::string programFolder, std::ostream& output)
    : platform(std::move(programFolder)), win(platform.get(), metrics), out(output)
{
    win.Load();
    win.FirstActivate("");
    win.SplashClosed();
}

bool Scenario::Play(std::string_view line)
{
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (line.find_first_not_of(' ') == std::string_view::npos || line.front() == '#')
        return true;
    const std::size_t end = std::min(line.find(' '), line.size());
    std::string rest(line.substr(std::min(end + 1, line.size())));
    try {
        if (!Run(line.substr(0, end), rest)) {
            status = 2;
            return false;
        }
    } catch (const Fault& fault) {
        out << "fault: " << fault.what() << '\n';
        status = 1;
        return false;
    }
    return !platform.system.Ended;
}

bool Scenario::Run(std::string_view command, const std::string& text)
{
    std::string rest = text;
    if (command == "strings") {
        const auto number = TakeNumber(rest);
        const InstrumentMode* mode = number ? FindMode(static_cast<int>(*number)) : nullptr;
        return mode && RunMenu(mode->Command);
    }
    if (command == "menu")
        return RunMenu(TakeWord(rest));
    if (command == "press")
        return Press(TakeWord(rest));
    if (command == "key")
        return PressKey(TakeWord(rest));
    if (command == "toolbar") {
        const auto button = TakeNumber(rest);
        if (!button || *button < 1 || *button > kNoteValues)
            return false;
        win.editor.Toolbar1(static_cast<int>(*button));
    } else if (command == "click") {
        const auto x = TakeNumber(rest);
        const auto y = TakeNumber(rest);
        if (!x || !y)
            return false;
        win.editor.SetFocus(Control::StaffBox);
        win.editor.StaffBoxMouseDown(*x, *y);
    } else if (command == "type") {
        for (char character : rest)
            SendKey(kUnknownKey, character);
    } else if (command == "tick") {
        if (win.form.Timer1Enabled)
            win.editor.Timer1();
    } else if (command == "dialog") {
        platform.dialogs.Paths.push_back(Answer(rest));
    } else if (command == "prompt") {
        platform.dialogs.Prompts.push_back(Answer(rest));
    } else if (command == "ask") {
        const std::string answer = TakeWord(rest);
        if (answer != "yes" && answer != "no")
            return false;
        platform.dialogs.Answers.push_back(answer == "yes");
    } else if (command == "copy") {
        win.editor.mnuCopy();
        win.form.FrmCopyBox.Text1 = TakeWord(rest);
        win.form.FrmCopyBox.Text2 = TakeWord(rest);
        win.editor.cmdCopyMeasure();
    } else if (command == "state") {
        PrintState();
    } else if (command == "table") {
        PrintTable();
    } else if (command == "log") {
        PrintLog();
    } else if (command == "shown") {
        PrintShown();
    } else {
        return false;
    }
    return true;
}

bool Scenario::RunMenu(std::string_view name)
{
    const MenuEntry* entry = FindMenuEntry(name);
    if (!entry)
        return false;
    RunEntry(*entry);
    return true;
}

void Scenario::RunEntry(const MenuEntry& entry)
{
    if (!IsEnabled(entry, win))
        return;
    entry.Run(win);
    if (entry.Name == std::string_view("mnuCopy"))
        copyBoxCaret = 0;
}

bool Scenario::InCopyBox() const
{
    return win.form.Focus == Control::Text1 || win.form.Focus == Control::Text2;
}

bool Scenario::Press(std::string_view name)
{
    if (name == "lblMeasNum") {
        win.editor.lblMeasNum();
        return true;
    }
    if (name == "lblLastNote" || name == "hdbkbox")
        return true;  // nothing answers a click
    if (name == "cmdCopyMeasure") {
        if (InCopyBox())
            win.editor.cmdCopyMeasure();
        return true;
    }
    for (const ControlRow& row : kControls)
        if (row.Name == name)
            return PressButton(row.Control);
    return false;
}

/// Clicks a button, which takes the focus first. False when the control is no button.
bool Scenario::PressButton(Control button)
{
    if (button == Control::cmdRefresh && !win.form.cmdRefreshEnabled)
        return true;
    switch (button) {
    case Control::cmdNext:
        win.editor.SetFocus(button);
        win.editor.cmdNext();
        return true;
    case Control::cmdPrevious:
        win.editor.SetFocus(button);
        win.editor.cmdPrevious();
        return true;
    case Control::cmdRefresh:
        win.editor.SetFocus(button);
        win.cmdRefresh();
        return true;
    case Control::cmdRest:
        win.editor.SetFocus(button);
        win.editor.cmdRest();
        return true;
    default:
        return false;
    }
}

bool Scenario::PressKey(const std::string& name)
{
    const MenuEntry* entry = InCopyBox() ? nullptr : FindShortcut(name);
    if (entry) {
        RunEntry(*entry);
        return true;
    }
    const bool onButton = win.form.Focus >= Control::cmdNext && win.form.Focus <= Control::cmdRest;
    if (onButton && (name == "Enter" || name == "Space"))
        return PressButton(win.form.Focus);
    for (const KeyRow& key : kKeys) {
        if (key.Name == name) {
            SendKey(key.Code, key.Character);
            return true;
        }
    }
    if (IsFunctionKey(name) || name.starts_with("Shift+") || name.starts_with("Ctrl+")) {
        SendKey(kUnknownKey, 0);
        return true;
    }
    return false;
}

/// A key down, then the key press if the key has a character, for whatever has the focus.
void Scenario::SendKey(int keyCode, char character)
{
    if (win.form.Focus == Control::StaffBox)
        win.editor.StaffBoxKeyDown(keyCode);
    if (character == 0)
        return;
    switch (win.form.Focus) {
    case Control::StaffBox:
        win.editor.StaffBoxKeyPress(character);
        break;
    case Control::txtRptBracket:
        if (character == '\r') {
            win.editor.txtRptBracketEnter();
        } else {
            std::size_t caret = win.form.txtRptBracket.Text.size();
            TypeIntoBox(win.form.txtRptBracket.Text, caret, character);
        }
        break;
    case Control::Text1:
    case Control::Text2:
        if (character == '\r') {
            win.editor.CopyBoxEnter(win.form.Focus);
            copyBoxCaret = 0;
        } else {
            TypeIntoBox(win.form.Focus == Control::Text1 ? win.form.FrmCopyBox.Text1
                                                         : win.form.FrmCopyBox.Text2,
                        copyBoxCaret, character);
        }
        break;
    default:
        break;
    }
}

void Scenario::TypeIntoBox(std::string& text, std::size_t& caret, char character)
{
    if (character == '\b') {
        if (caret > 0)
            text.erase(--caret, 1);
    } else if (static_cast<unsigned char>(character) >= 32) {
        text.insert(caret++, 1, character);
    }
}

void Scenario::PrintState()
{
    const Tune& tune = win.tune;
    const MainForm& form = win.form;
    const auto print = [&](std::string_view name, const auto& value) {
        out << name << '=' << value << '\n';
    };
    print("NumStrings", tune.NumStrings);
    print("LastNote", tune.LastNote);
    print("LastMeas", tune.LastMeas);
    print("CurNote", tune.CurNote);
    print("CurMeas", tune.CurMeas);
    print("MeasHead", form.MeasHead);
    print("MeasEnd", form.MeasEnd);
    print("CursorX", form.CursorX);
    print("CursorY", form.CursorY);
    print("SavedCursorY", form.SavedCursorY);
    print("CurBeats", form.CurBeats);
    print("CurBeatUnit", form.CurBeatUnit);
    print("CurValue", form.CurValue);
    print("MeasCapacity", form.MeasCapacity);
    print("MeasFill", form.MeasFill);
    print("EntryState", form.EntryState);
    print("InputMode", form.InputMode);
    print("CaretOn", form.CaretOn);
    print("Saved", form.Saved);
    print("FileName", tune.FileName);
    print("EndBarX", win.view.EndBarX);
    print("Focus", NameOf(form.Focus));
    print("Toolbar1", form.Toolbar1);
    print("cmdNext", form.cmdNextCaption);
    print("cmdPrevious", form.cmdPreviousCaption);
    print("lblMeasNum", form.lblMeasNum);
    print("lblLastNote", form.lblLastNote);
    print("hdbkbox", form.hdbkbox);
    print("txtRptBracket", form.txtRptBracket.Visible ? Quoted(form.txtRptBracket.Text) : "hidden");
    print("Timer1", OnOff(form.Timer1Enabled));
    print("cmdRefresh", OnOff(form.cmdRefreshEnabled));
    print("mnuSave", OnOff(form.mnuSaveEnabled));
    print("mnuPaste", OnOff(form.mnuPasteEnabled));
    out << '\n';
}

void Scenario::PrintTable()
{
    for (int i = 0; i <= kLastRecord; ++i) {
        const NoteRecord& r = win.tune[i];
        if (r.IsClear())
            continue;
        out << i << ':';
        for (int number : {r.Measure, r.NoteCode, r.XPos, r.Reserved, r.BeatUnit, r.Beats,
                           r.Spacing, r.BeamCode})
            out << ' ' << number;
        out << ' ' << Quoted(r.BarCode) << ' ' << Quoted({&r.LeftHand, 1}) << ' '
            << Quoted({&r.RightHand, 1}) << ' ' << Quoted(r.ChordText);
        for (const std::string& slot : r.Slots)
            out << ' ' << Quoted(slot);
        out << '\n';
    }
    out << '\n';
}

void Scenario::PrintLog()
{
    out << win.view.StaffBox.Picture().Log() << '\n';
}

void Scenario::PrintShown()
{
    for (const ShownBox& box : platform.dialogs.Shown)
        out << "box " << kIconNames[static_cast<int>(box.Icon)] << ' ' << QuotedBoxText(box.Title)
            << ' ' << QuotedBoxText(box.Text) << '\n';
    out << '\n';
    platform.dialogs.Shown.clear();
}

}  // namespace quillon
