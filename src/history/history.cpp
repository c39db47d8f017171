#include "history/history.h"

#include "history/bytes.h"

#include <algorithm>

namespace quillon {

namespace {

/// Moving about that takes more than this is merged into one delta.
constexpr std::size_t kLongMoving = 32'000;

/// The deltas of a list, each after its length.
std::vector<std::string_view> Split(std::string_view deltas)
{
    std::vector<std::string_view> list;
    for (ByteReader bytes(deltas); !bytes.AtEnd();)
        list.push_back(bytes.Text());
    return list;
}

void ApplyAll(std::string_view deltas, Direction direction, Moment& moment)
{
    std::vector<std::string_view> list = Split(deltas);
    if (direction == Direction::Backward)
        std::reverse(list.begin(), list.end());
    for (std::string_view delta : list)
        Apply(delta, direction, moment);
}

std::string BehindItsLength(std::string_view delta)
{
    ByteWriter bytes;
    bytes.Text(delta);
    return bytes.Take();
}

void MoveLast(std::vector<std::string>& from, std::vector<std::string>& to)
{
    to.push_back(std::move(from.back()));
    from.pop_back();
}

std::string BaseName(const std::string& path)
{
    return path.substr(path.find_last_of('/') + 1);
}

}  // namespace

History::History(const Values& theProgram)
    : program(theProgram), last(theProgram), picture(theProgram.StaffBox.Picture().Revision()),
      openings(theProgram.Form.Openings), writes(theProgram.Form.Writes), steps(1),
      written{WorkBytes(theProgram.Music)}
{
}

bool History::IsText(Typing what)
{
    return what == Typing::Chord || what == Typing::LeftHand || what == Typing::RightHand ||
           what == Typing::Bracket;
}

History::Open History::TypingIn(const Values& values)
{
    const int note = values.Music.CurNote;
    switch (values.Form.InputMode) {
    case InputMode::Chord:
        return {Typing::Chord, note};
    case InputMode::LeftHand:
        return {Typing::LeftHand, note};
    case InputMode::RightHand:
        return {Typing::RightHand, note};
    case InputMode::Bracket:
        return {Typing::Bracket, values.Form.MeasHead};
    default:
        return values.Form.FormEnabled ? Open{Typing::Note, note} : Open{Typing::PageSetup, 0};
    }
}

/// Whether what has changed belongs to what was being typed.
bool History::BelongsToOpen(const Changes& changes) const
{
    return open.What != Typing::Nothing && !changes.Name &&
           (!changes.Page || open.What == Typing::PageSetup) &&
           (!changes.Work || (changes.OneRecord && changes.Record == open.Record));
}

std::string History::StepName(std::string_view name, Open typing, const Changes& changes,
                              int measureBefore) const
{
    const Tune& tune = program.Music;
    switch (typing.What) {
    case Typing::Chord:
        return "Chord Name";
    case Typing::LeftHand:
        return "Left Hand Letter";
    case Typing::RightHand:
        return "Right Hand Letter";
    case Typing::Bracket:
        return "Repeat Bracket";
    case Typing::PageSetup:
        return "Page Setup";
    case Typing::Note:
        return changes.Record > 0 && tune[changes.Record].Measure == 0 ? "Delete Note" : "Note";
    case Typing::Nothing:
        break;
    }
    std::string text(name);
    if (name == "Open")
        text += ' ' + BaseName(tune.FileName);
    else if (name.ends_with("Measure"))
        text +=
            ' ' + std::to_string(name.starts_with("Delete") ? measureBefore : int{tune.CurMeas});
    return text;
}

void History::Begin()
{
    if (program.StaffBox.Picture().Revision() != picture)
        Observe(Input::Command, {});
}

void History::Observe(Input input, std::string_view name)
{
    const Open before = TypingIn(last.Values());
    const Open after = TypingIn(program);
    const int measureBefore = last.Music.CurMeas;
    const bool beginsTune = TakeWritten();
    Changes changes;
    const std::string delta = TakeChanges(changes);

    const bool entered = IsText(after.What) && after.What != before.What;
    const bool changed = changes.Work || changes.Name || changes.Page;
    const bool begins = beginsTune || entered || (changed && !BelongsToOpen(changes));
    const bool typed = input == Input::Key && before == after;
    const bool goesOn = !beginsTune && (entered || typed || after.What == Typing::PageSetup);
    if (begins)
        BeginStep(StepName(name, goesOn ? after : Open(), changes, measureBefore), beginsTune);
    if (!delta.empty())
        Append(delta, !begins && !changed);
    if (begins)
        open = goesOn ? after : Open();
    else if (open != after || input == Input::Enter)
        open = {};
}

/// Checks whether a tune was begun or opened, and keeps the work that is in its file.
bool History::TakeWritten()
{
    const MainForm& form = program.Form;
    const bool wrote = form.Writes != writes;
    const bool begun = form.Openings != openings;
    writes = form.Writes;
    openings = form.Openings;
    if (wrote)  // before a tune is begun, the one that goes is saved
        written.back() = WorkBytes(begun ? last.Music : program.Music);
    return begun;
}

std::string History::TakeChanges(Changes& changes)
{
    const Tune& tune = program.Music;
    const bool moved = tune.CurNote != last.Music.CurNote || tune.LastNote != last.Music.LastNote;
    Scratch scratch;
    for (std::size_t i = 0; i < scratch.size(); ++i)
        scratch.at(i) = scratchFiles.at(i).Read(kScratchFiles.at(i), moved);
    const unsigned now = program.StaffBox.Picture().Revision();
    std::string delta = TakeDelta(program, scratch, last, now == picture, changes);
    picture = now;
    return delta;
}

/// What was undone is forgotten.
void History::BeginStep(std::string name, bool beginsTune)
{
    Step& before = steps[static_cast<std::size_t>(position)];
    before.Deltas += before.Detour;
    before.Detour.clear();
    steps.resize(static_cast<std::size_t>(position) + 1);
    writtenUndone.clear();
    if (beginsTune)
        written.push_back(WorkBytes(program.Music));
    steps.push_back({std::move(name), {}, {}, 0, beginsTune});
    ++position;
}

void History::Append(std::string_view delta, bool moving)
{
    Step& step = steps[static_cast<std::size_t>(position)];
    if (RedoCount() > 0) {
        step.Detour += BehindItsLength(delta);
        if (step.Detour.size() > kLongMoving)
            Shorten(step.Detour, 0);
        return;
    }
    if (position == 0)
        return;  // nothing ever goes back to it
    const std::size_t size = step.Deltas.size();
    step.Deltas += BehindItsLength(delta);
    step.Moving = moving ? step.Moving + step.Deltas.size() - size : 0;
    if (step.Moving > kLongMoving) {
        const std::size_t from = step.Deltas.size() - step.Moving;
        Shorten(step.Deltas, from);
        const std::size_t shortened = step.Deltas.size() - from;
        step.Moving = shortened < kLongMoving / 2 ? shortened : 0;  // else it would not pay again
    }
}

/// Makes one delta of those from `from` on. They lead to `last`.
void History::Shorten(std::string& deltas, std::size_t from)
{
    Moment start = last;
    ApplyAll(std::string_view(deltas).substr(from), Direction::Backward, start);
    Changes ignored;
    const std::string delta = TakeDelta(last.Values(), last.ScratchFiles, start, false, ignored);
    deltas.resize(from);
    deltas += BehindItsLength(delta);
}

void History::Undo(int count)
{
    Begin();
    if (count <= 0 || position == 0)
        return;
    Moment moment = last;
    int at = position;
    for (; count > 0 && at > 0; --count, --at) {
        const Step& step = steps[static_cast<std::size_t>(at)];
        ApplyAll(step.Detour, Direction::Backward, moment);
        ApplyAll(step.Deltas, Direction::Backward, moment);
    }
    Arrive(std::move(moment), at);
}

// A step that is gone through leads to where the next one began, not to where its detour led.
void History::Redo(int count)
{
    Begin();
    if (count <= 0 || RedoCount() == 0)
        return;
    const auto from = steps.begin() + position;
    const auto to = from + std::min(count, RedoCount());
    Moment moment = last;
    ApplyAll(from->Detour, Direction::Backward, moment);
    for (auto step = from + 1; step <= to; ++step)
        ApplyAll(step->Deltas, Direction::Forward, moment);
    ApplyAll(to->Detour, Direction::Forward, moment);
    Arrive(std::move(moment), static_cast<int>(to - steps.begin()));
    for (auto step = from; step < to; ++step)
        step->Detour.clear();
}

/// Goes to a moment at which step `at` is the last one done.
void History::Arrive(Moment moment, int at)
{
    moment.PutBack(program);
    last = std::move(moment);
    picture = program.StaffBox.Picture().Revision();
    for (; position > at; --position)
        if (steps[static_cast<std::size_t>(position)].BeginsTune)
            MoveLast(written, writtenUndone);
    for (; position < at; ++position)
        if (steps[static_cast<std::size_t>(position) + 1].BeginsTune)
            MoveLast(writtenUndone, written);
    program.Form.Saved = Changed() ? SavedState::Unsaved : SavedState::Saved;
    open = {};
}

std::string History::UndoName() const
{
    return steps[static_cast<std::size_t>(position)].Name;
}

std::string History::RedoName() const
{
    return RedoCount() > 0 ? steps[static_cast<std::size_t>(position) + 1].Name : "";
}

std::size_t History::Size() const
{
    std::size_t size = 0;
    for (const Step& step : steps)
        size += sizeof step + step.Deltas.capacity() + step.Detour.capacity();
    return size;
}

}  // namespace quillon
