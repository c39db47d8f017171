#include "headless/script.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <ostream>

namespace quillon {

namespace {

constexpr std::string_view kKeys[] = {
    "Enter", "Backspace", "Delete", "Left", "Right", "Up", "Down", "Home", "End", "Space", "Escape",
};

constexpr std::string_view kPressed[] = {
    "cmdNext",    "cmdPrevious", "cmdRefresh", "cmdRest",
    "lblMeasNum", "lblLastNote", "hdbkbox",    "cmdCopyMeasure",
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

constexpr double kMostSteps = 1e6;  // of one undo or redo

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

bool IsKey(std::string_view name)
{
    return std::ranges::find(kKeys, name) != std::end(kKeys) || IsFunctionKey(name) ||
           name.starts_with("Shift+") || name.starts_with("Ctrl+");
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

std::optional<std::string> TextOrCancel(const std::string& text)
{
    return text == "cancel" ? std::nullopt : std::optional(text);
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

std::string_view NameOf(Control control)
{
    for (const ControlRow& row : kControls)
        if (row.Control == control)
            return row.Name;
    return {};
}

Control ControlNamed(std::string_view name)
{
    for (const ControlRow& row : kControls)
        if (row.Name == name)
            return row.Control;
    return Control::None;
}

bool Script::Play(std::string_view line)
{
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (line.find_first_not_of(' ') == std::string_view::npos || line.front() == '#')
        return true;
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string rest(line.substr(std::min(end + 1, line.size())));
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
    return !Ended();
}

/// False for an unknown command.
bool Script::Run(std::string_view command, const std::string& text)
{
    if (command == "type") {
        Type(text);
        return true;
    }
    if (command == "tick") {
        Tick();
        return true;
    }
    return Act(command, text) || GoBackOrForth(command, text) || Answer(command, text) ||
           Print(command);
}

bool Script::Act(std::string_view command, std::string rest)
{
    const std::string word = TakeWord(rest);
    std::string argument = word;
    if (command == "strings") {
        const auto number = TakeNumber(argument);
        const InstrumentMode* mode = number ? FindMode(static_cast<int>(*number)) : nullptr;
        return mode && RunMenu(FindMenuEntry(mode->Command));
    }
    if (command == "menu")
        return RunMenu(FindMenuEntry(word));
    if (command == "press" && std::ranges::find(kPressed, word) != std::end(kPressed)) {
        Press(word);
        return true;
    }
    if (command == "key" && IsKey(word)) {
        Key(word);
        return true;
    }
    if (command == "toolbar") {
        const auto button = TakeNumber(argument);
        if (!button || *button < 1 || *button > kNoteValues)
            return false;
        Toolbar(static_cast<int>(*button));
        return true;
    }
    if (command == "click") {
        const auto x = TakeNumber(argument);
        const auto y = TakeNumber(rest);
        if (!x || !y)
            return false;
        Click(*x, *y);
        return true;
    }
    if (command == "copy") {
        Copy(word, TakeWord(rest));
        return true;
    }
    return false;
}

bool Script::RunMenu(const MenuEntry* entry)
{
    if (entry)
        Menu(*entry);
    return entry != nullptr;
}

/// What the next dialog, prompt or question gets.
bool Script::Answer(std::string_view command, const std::string& text)
{
    if (command == "dialog") {
        answers.Paths.push_back(TextOrCancel(text));
    } else if (command == "prompt") {
        answers.Prompts.push_back(TextOrCancel(text));
    } else if (command == "ask") {
        std::string rest = text;
        const std::string answer = TakeWord(rest);
        if (answer != "yes" && answer != "no")
            return false;
        answers.Answers.push_back(answer == "yes");
    } else {
        return false;
    }
    return true;
}

bool Script::GoBackOrForth(std::string_view command, std::string rest)
{
    const bool undo = command == "undo";
    if (!undo && command != "redo")
        return false;
    const double count = TakeNumber(rest).value_or(1);
    if (count < 0 || count > kMostSteps)
        return false;
    if (undo)
        Undo(static_cast<int>(count));
    else
        Redo(static_cast<int>(count));
    return true;
}

bool Script::Print(std::string_view command)
{
    if (command == "steps")
        PrintSteps();
    else if (command == "state")
        PrintState();
    else if (command == "table")
        PrintTable();
    else if (command == "log")
        PrintLog();
    else if (command == "shown")
        PrintShown();
    else
        return false;
    return true;
}

bool Script::InCopyBox() const
{
    return win.form.Focus == Control::Text1 || win.form.Focus == Control::Text2;
}

void Script::PrintState()
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
    print("EntryState", static_cast<int>(form.EntryState));
    print("InputMode", static_cast<int>(form.InputMode));
    print("CaretOn", form.CaretOn);
    print("Saved", static_cast<int>(form.Saved));
    print("FileName", tune.FileName);
    print("EndBarX", win.view.EndBarX);
    print("Focus", NameOf(form.Focus));
    print("Toolbar1", form.Toolbar1);
    print("cmdNext", form.cmdNextCaption);
    print("cmdPrevious", form.cmdPreviousCaption);
    print("lblMeasNum", win.view.lblMeasNum);
    print("lblLastNote", win.view.lblLastNote);
    print("hdbkbox", win.view.hdbkbox);
    print("txtRptBracket", form.txtRptBracket.Visible ? Quoted(form.txtRptBracket.Text) : "hidden");
    print("Timer1", OnOff(form.Timer1Enabled));
    print("cmdRefresh", OnOff(form.cmdRefreshEnabled));
    print("mnuSave", OnOff(form.mnuSaveEnabled));
    print("mnuPaste", OnOff(form.mnuPasteEnabled));
    out << '\n';
}

void Script::PrintTable()
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

void Script::PrintLog()
{
    out << win.view.StaffBox.Picture().Log() << '\n';
}

void Script::PrintShown()
{
    for (const ShownBox& box : answers.Shown)
        out << "box " << kIconNames[static_cast<int>(box.Icon)] << ' ' << QuotedBoxText(box.Title)
            << ' ' << QuotedBoxText(box.Text) << '\n';
    out << '\n';
    answers.Shown.clear();
}

void Script::PrintSteps()
{
    out << "undo=" << Steps()->UndoCount() << " redo=" << Steps()->RedoCount() << "\n\n";
}

}  // namespace quillon
