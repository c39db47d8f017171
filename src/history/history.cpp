#include "history/history.h"

#include "history/entries.h"

#include <algorithm>

namespace quillon {

namespace {

std::string BaseName(const std::string& path)
{
    return path.substr(path.find_last_of('/') + 1);
}

}  // namespace

History::History(const Values& theProgram)
    : program(theProgram), timeline(Moment(theProgram), WorkBytes(theProgram.Music)),
      picture(theProgram.StaffBox.Picture().Revision()), openings(theProgram.Form.Openings),
      writes(theProgram.Form.Writes)
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
    program.Form.Discarded = false;
    if (program.StaffBox.Picture().Revision() != picture)
        Observe(Input::Command, {});
}

void History::Observe(Input input, std::string_view name)
{
    const Open before = TypingIn(timeline.Last().Values());
    const Open after = TypingIn(program);
    const int measureBefore = timeline.Last().Music.CurMeas;
    Event event;
    const bool beginsTune = TakeOpening(event);
    Changes changes;
    event.Delta = TakeChanges(changes);

    const bool entered = IsText(after.What) && after.What != before.What;
    const bool changed = changes.Work || changes.Name || changes.Page;
    const bool begins = beginsTune || entered || (changed && !BelongsToOpen(changes));
    const bool typed = input == Input::Key && before == after;
    const bool goesOn = !beginsTune && (entered || typed || after.What == Typing::PageSetup);
    if (begins)
        event.Begins = {StepName(name, goesOn ? after : Open(), changes, measureBefore), beginsTune,
                        beginsTune && program.Form.Saved == SavedState::Unsaved};
    event.Moving = !begins && !changed;
    Add(event);
    if (begins)
        open = goesOn ? after : Open();
    else if (open != after || input == Input::Enter)
        open = {};
}

/// Checks whether a tune was begun or opened, and whether one was saved: before a tune is begun,
/// the one that goes.
bool History::TakeOpening(Event& event)
{
    const MainForm& form = program.Form;
    const bool begun = form.Openings != openings;
    const bool wrote = form.Writes != writes;
    event.SavedBefore = wrote && begun;
    event.SavedAfter = wrote && !begun;
    openings = form.Openings;
    writes = form.Writes;
    return begun;
}

/// The delta that leads from the last moment to the present one, which becomes the last.
std::string History::TakeChanges(Changes& changes)
{
    const Tune& tune = program.Music;
    Moment& last = timeline.Last();
    const bool moved = tune.CurNote != last.Music.CurNote || tune.LastNote != last.Music.LastNote;
    Scratch scratch;
    for (std::size_t i = 0; i < scratch.size(); ++i)
        scratch.at(i) = scratchFiles.at(i).Read(kScratchFiles.at(i), moved);
    const unsigned now = program.StaffBox.Picture().Revision();
    std::string delta = TakeDelta(program, scratch, last, now == picture, changes);
    picture = now;
    return delta;
}

void History::Add(const Event& event)
{
    if (event.IsEmpty())
        return;
    if (Keeper)
        Keeper->Happens(event);
    timeline.Add(event);
    Tell(EntryOf(event));
}

void History::Tell(std::string_view entry)
{
    if (Keeper)
        Keeper->Append(entry);
}

void History::Undo(int count)
{
    Begin();
    GoBack(std::clamp(count, 0, UndoCount()));
}

void History::Redo(int count)
{
    Begin();
    GoBack(-std::clamp(count, 0, RedoCount()));
}

void History::GoBack(int back)
{
    if (back == 0)
        return;
    Moment moment = timeline.MomentAt(back);
    moment.PutBack(program);
    timeline.GoBack(back, std::move(moment));
    Tell(EntryOf(back));
    Arrived();
}

void History::Adopt(const Timeline& run, std::string name)
{
    Begin();
    Moment end = run.Last();
    end.PutBack(program);
    const auto append = [this](const Step& step) {
        timeline.Append(step);
        Tell(EntryOf(step));
    };
    append(timeline.StepTo(run, std::move(name)));
    for (int place = 1; place <= run.UndoCount(); ++place)
        append(run.At(place));
    for (int place = 1; place <= run.RedoCount(); ++place) {
        timeline.AppendUndone(run.At(run.UndoCount() + place));
        Tell(EntryOfUndone(run.At(run.UndoCount() + place)));
    }
    Arrived();
}

void History::Arrived()
{
    picture = program.StaffBox.Picture().Revision();
    program.Form.Saved = Changed() ? SavedState::Unsaved : SavedState::Saved;
    open = {};
}

}  // namespace quillon
