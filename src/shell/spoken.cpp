#include "shell/spoken.h"

#include "notation/measure_view.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace quillon {

namespace {

constexpr const char* kValueNames[] = {
    "sixteenth triplet",
    "sixteenth",
    "eighth triplet",
    "eighth",
    "dotted eighth",
    "quarter triplet",
    "quarter",
    "dotted quarter",
    "half",
    "dotted half",
    "whole",
};
static_assert(std::size(kValueNames) == kNoteValues);

/// What the cursor is editing: the chord, a fingering letter, or a string and its fret.
std::string SpokenCell(const NoteRecord& record, const MainForm& form)
{
    const auto named = [](const std::string& name, const std::string& text) {
        return text.find_first_not_of(' ') == std::string::npos ? "no " + name : name + " " + text;
    };
    switch (form.InputMode) {
    case InputMode::Chord:
        return named("chord", record.ChordText);
    case InputMode::LeftHand:
        return named("left-hand fingering", {record.LeftHand});
    case InputMode::RightHand:
        return named("right-hand fingering", {record.RightHand});
    default:
        break;
    }
    const int string = std::clamp(StringAt(form.CursorY), 1, kStringSlots);
    return "string " + std::to_string(string) + ", " + named("fret", record.Slot(string));
}

/// The note or rest at the cursor; on a free record, the value that the next note will have.
std::string SpokenValue(const NoteRecord& record, const MainForm& form, bool free)
{
    const int value = free ? int{form.CurValue} : ValueOf(record.NoteCode);
    const std::string name = ValueName(value);
    return name.empty() ? "" : ", " + name + (!free && record.IsRest() ? " rest" : " note");
}

std::vector<std::string> Parts(const std::string& words)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t comma; (comma = words.find(", ", start)) != std::string::npos;) {
        parts.push_back(words.substr(start, comma - start));
        start = comma + 2;
    }
    parts.push_back(words.substr(start));
    return parts;
}

}  // namespace

const char* ValueName(int button)
{
    return IsNoteValue(button) ? kValueNames[button - 1] : "";
}

std::string SpokenCursor(const Tune& tune, const MainForm& form)
{
    std::string measure = "Measure " + std::to_string(tune.CurMeas);
    const int column = tune.CurNote - form.MeasHead;
    if (tune.CurNote < 1 || column < 1)
        return measure;
    if (tune.CurNote > kLastRecord)
        return measure + ", the table is full";
    const int columns = std::max(0, form.MeasEnd - form.MeasHead);
    const bool free = column > columns;
    const NoteRecord& record = tune[tune.CurNote];
    return measure + (free ? ", new column " : ", column ") + std::to_string(column) +
           (free ? "" : " of " + std::to_string(columns)) + ", " + SpokenCell(record, form) +
           SpokenValue(record, form, free);
}

std::string SpokenChange(const std::string& before, const std::string& after)
{
    const std::vector<std::string> old = Parts(before);
    const std::vector<std::string> parts = Parts(after);
    if (old.size() != parts.size() || old[0] != parts[0])
        return after;
    std::string change;
    for (std::size_t i = 1; i < parts.size(); ++i)
        if (parts[i] != old[i])
            change += (change.empty() ? "" : ", ") + parts[i];
    return change;
}

}  // namespace quillon
