#include "history/timeline.h"

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

std::string BehindItsLength(std::string_view delta)
{
    ByteWriter bytes;
    bytes.Text(delta);
    return bytes.Take();
}

}  // namespace

void ApplyAll(std::string_view deltas, Direction direction, Moment& moment)
{
    std::vector<std::string_view> list = Split(deltas);
    if (direction == Direction::Backward)
        std::reverse(list.begin(), list.end());
    for (std::string_view delta : list)
        Apply(delta, direction, moment);
}

Timeline::Timeline(Moment start, std::string written, std::string detour)
    : last(std::move(start)), steps(1)
{
    steps[0].Written = std::move(written);
    steps[0].Detour = std::move(detour);
    CompareWithFile();
}

std::string Timeline::UndoName() const
{
    return At(position).Name;
}

std::string Timeline::RedoName() const
{
    return RedoCount() > 0 ? At(position + 1).Name : "";
}

/// The step that began the tune that is present at a step; 0 for the first tune.
int Timeline::TuneBegunAt(int place) const
{
    while (place > 0 && !At(place).BeginsTune)
        --place;
    return place;
}

void Timeline::Add(const Event& event)
{
    if (event.SavedBefore) {  // before a tune is begun, the one that goes is saved
        Moment before = last;
        Apply(event.Delta, Direction::Backward, before);
        At(TuneBegunAt(position)).Written = WorkBytes(before.Music);
    }
    if (event.Begins)
        BeginStep(*event.Begins);
    if (!event.Delta.empty())
        AppendDelta(event.Delta, event.Moving);
    if (event.SavedAfter)
        At(TuneBegunAt(position)).Written = WorkBytes(last.Music);
    if (!event.Moving || event.SavedAfter || last.Music.LastNote != comparedLastNote)
        CompareWithFile();
}

void Timeline::CompareWithFile()
{
    changed = WorkBytes(last.Music) != WrittenAfter(position);
    comparedLastNote = last.Music.LastNote;
}

/// What was undone is forgotten.
void Timeline::BeginStep(const Event::Beginning& beginning)
{
    Step& before = At(position);
    before.Deltas += before.Detour;
    before.Detour.clear();
    steps.resize(static_cast<std::size_t>(position) + 1);
    steps.push_back(
        {beginning.Name,
         {},
         {},
         0,
         beginning.BeginsTune,
         beginning.BeginsTune && !beginning.InNoFile ? WorkBytes(last.Music) : std::string()});
    ++position;
}

void Timeline::AppendDelta(std::string_view delta, bool moving)
{
    Step& step = At(position);
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
void Timeline::Shorten(std::string& deltas, std::size_t from) const
{
    Moment start = last;
    Moment end = last;
    ApplyAll(std::string_view(deltas).substr(from), Direction::Backward, start);
    Changes ignored;
    const std::string delta = TakeDelta(end.Values(), end.ScratchFiles, start, false, ignored);
    deltas.resize(from);
    deltas += BehindItsLength(delta);
}

Moment Timeline::MomentAfter(int place) const
{
    Moment moment = last;
    ApplyAll(At(position).Detour, Direction::Backward, moment);
    for (int at = position; at > place; --at)
        ApplyAll(At(at).Deltas, Direction::Backward, moment);
    for (int at = position + 1; at <= place; ++at)
        ApplyAll(At(at).Deltas, Direction::Forward, moment);
    return moment;
}

// A step that is gone through leads to where the next one began, not to where its detour led.
Moment Timeline::MomentAt(int back) const
{
    Moment moment = MomentAfter(position - back);
    if (back < 0)
        ApplyAll(At(position - back).Detour, Direction::Forward, moment);
    return moment;
}

void Timeline::GoBack(int back, Moment moment)
{
    last = std::move(moment);
    for (int place = position; place < position - back; ++place)
        At(place).Detour.clear();
    position -= back;
    CompareWithFile();
}

Step Timeline::StepTo(const Timeline& run, std::string name) const
{
    Moment from = last;
    Moment to = run.MomentAfter(0);
    Changes ignored;
    const std::string delta = TakeDelta(to.Values(), to.ScratchFiles, from, false, ignored);
    return {std::move(name), BehindItsLength(delta), run.At(0).Detour, 0, true, run.At(0).Written};
}

void Timeline::Append(Step step)
{
    Step& before = At(position);
    before.Deltas += before.Detour;
    before.Detour.clear();
    steps.resize(static_cast<std::size_t>(position) + 1);
    ApplyAll(step.Deltas, Direction::Forward, last);
    steps.push_back(std::move(step));
    ++position;
    CompareWithFile();
}

void Timeline::AppendUndone(Step step)
{
    if (RedoCount() == 0)
        ApplyAll(At(position).Detour, Direction::Forward, last);
    steps.push_back(std::move(step));
}

std::size_t Timeline::Size() const
{
    std::size_t size = 0;
    for (const Step& step : steps)
        size +=
            sizeof step + step.Deltas.capacity() + step.Detour.capacity() + step.Written.capacity();
    return size;
}

}  // namespace quillon
