#include "history/entries.h"

#include "history/bytes.h"

namespace quillon {

namespace {

/// The first byte of an entry. The numbers appear in journals.
enum Kind : unsigned {
    kBeginning = 1,
    kEvent = 2,
    kStep = 3,
    kUndoneStep = 4,
    kGoBack = 5,
};

/// What of an event there is.
enum EventPart : unsigned {
    kBegins = 1,
    kBeginsTune = 2,
    kMoving = 4,
    kSavedBefore = 8,
    kSavedAfter = 16,
    kInNoFile = 32,
    kAllParts = 63,
};

ByteWriter Begun(Kind kind)
{
    ByteWriter bytes;
    bytes.Byte(kind);
    return bytes;
}

/// The moment that all beginnings are told as a difference from.
Moment BlankMoment()
{
    static const FixedTextMetrics metrics;
    Tune tune;
    MainForm form;
    DrawSurface staff(metrics, kPoints, 0, 0);
    Int16 endBarX = 0;
    std::string measure;
    std::string note;
    std::string lineBreak;
    PageSettings page;
    std::array<Int16, kStringSlots> tuning{};
    Moment moment({tune, form, staff, endBarX, measure, note, lineBreak, page, tuning});
    moment.ScratchFiles = {};
    return moment;
}

std::string EntryOf(Kind kind, const Step& step)
{
    ByteWriter bytes = Begun(kind);
    bytes.Text(step.Name);
    bytes.Text(step.Deltas);
    bytes.Text(step.Detour);
    bytes.Unsigned(step.Moving);
    bytes.Byte(step.BeginsTune);
    bytes.Text(step.Written);
    return bytes.Take();
}

Step StepFrom(ByteReader& bytes)
{
    Step step;
    step.Name = bytes.Text();
    step.Deltas = bytes.Text();
    step.Detour = bytes.Text();
    step.Moving = bytes.Count(step.Deltas.size());
    step.BeginsTune = bytes.Byte() != 0;
    step.Written = bytes.Text();
    return step;
}

void ReplayEvent(ByteReader& bytes, Timeline& timeline)
{
    const unsigned parts = bytes.Byte();
    if (parts > kAllParts)
        throw DamagedDelta();
    Event event;
    event.Moving = parts & kMoving;
    event.SavedBefore = parts & kSavedBefore;
    event.SavedAfter = parts & kSavedAfter;
    if (parts & kBegins)
        event.Begins = {std::string(bytes.Text()), (parts & kBeginsTune) != 0,
                        (parts & kInNoFile) != 0};
    event.Delta = bytes.Text();
    Apply(event.Delta, Direction::Forward, timeline.Last());
    timeline.Add(event);
}

void ReplayGoBack(ByteReader& bytes, Timeline& timeline)
{
    const int back = bytes.Integer(-timeline.RedoCount(), timeline.UndoCount());
    timeline.GoBack(back, timeline.MomentAt(back));
}

}  // namespace

std::string EntryOf(Moment start, const std::string& written, const std::string& detour)
{
    Moment blank = BlankMoment();
    Changes ignored;
    ByteWriter bytes = Begun(kBeginning);
    bytes.Text(written);
    bytes.Text(detour);
    bytes.Text(TakeDelta(start.Values(), start.ScratchFiles, blank, false, ignored));
    return bytes.Take();
}

std::string EntryOf(const Event& event)
{
    ByteWriter bytes = Begun(kEvent);
    const bool beginsTune = event.Begins && event.Begins->BeginsTune;
    const bool inNoFile = event.Begins && event.Begins->InNoFile;
    bytes.Byte((event.Begins ? kBegins : 0U) | (beginsTune ? kBeginsTune : 0U) |
               (event.Moving ? kMoving : 0U) | (event.SavedBefore ? kSavedBefore : 0U) |
               (event.SavedAfter ? kSavedAfter : 0U) | (inNoFile ? kInNoFile : 0U));
    if (event.Begins)
        bytes.Text(event.Begins->Name);
    bytes.Text(event.Delta);
    return bytes.Take();
}

std::string EntryOf(const Step& step)
{
    return EntryOf(kStep, step);
}

std::string EntryOfUndone(const Step& step)
{
    return EntryOf(kUndoneStep, step);
}

std::string EntryOf(int back)
{
    ByteWriter bytes = Begun(kGoBack);
    bytes.Signed(back);
    return bytes.Take();
}

std::vector<std::string> EntriesOf(const Timeline& timeline, int place)
{
    std::vector<std::string> entries{EntryOf(
        timeline.MomentAfter(place), timeline.WrittenAfter(place), timeline.At(place).Detour)};
    const int done = timeline.UndoCount();
    for (int at = place + 1; at <= done; ++at)
        entries.push_back(EntryOf(timeline.At(at)));
    for (int at = done + 1; at <= done + timeline.RedoCount(); ++at)
        entries.push_back(EntryOfUndone(timeline.At(at)));
    return entries;
}

Timeline BeginningFrom(std::string_view entry)
{
    ByteReader bytes(entry);
    if (bytes.Byte() != kBeginning)
        throw DamagedDelta();
    std::string written(bytes.Text());
    std::string detour(bytes.Text());
    Moment start = BlankMoment();
    Apply(bytes.Text(), Direction::Forward, start);
    return {std::move(start), std::move(written), std::move(detour)};
}

void Replay(std::string_view entry, Timeline& timeline)
{
    ByteReader bytes(entry);
    switch (bytes.Byte()) {
    case kEvent:
        return ReplayEvent(bytes, timeline);
    case kStep:
        return timeline.Append(StepFrom(bytes));
    case kUndoneStep:
        return timeline.AppendUndone(StepFrom(bytes));
    case kGoBack:
        return ReplayGoBack(bytes, timeline);
    default:
        throw DamagedDelta();
    }
}

}  // namespace quillon
