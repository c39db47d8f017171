#include "history/delta.h"

#include "history/values.h"

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

/// What a part of a delta is about. The numbers appear in journals.
enum Part : unsigned {
    kFields = 1,
    kRecords = 2,
    kShift = 3,
    kPicture = 4,
    kParked = 5,
    kScratch = 6,
};

/// Reads a value as it was and as it became, and takes `value` from one to the other.
template <typename Value> void Step(ByteReader& bytes, Direction direction, Value& value)
{
    Value before{};
    Value after{};
    Get(bytes, before);
    Get(bytes, after);
    if (direction == Direction::Backward)
        std::swap(before, after);
    if (value != before)
        throw DamagedDelta();
    value = std::move(after);
}

/// Collects the parts of a delta.
class DeltaWriter {
public:
    void Add(Part part, ByteWriter payload)
    {
        if (payload.IsEmpty())
            return;
        bytes.Byte(part);
        bytes.Text(payload.Take());
    }

    std::string Take() { return bytes.Take(); }

private:
    ByteWriter bytes;
};

// Fields

void TakeFields(const Values& live, Moment& last, DeltaWriter& delta)
{
    ByteWriter bytes;
    EachPair(FieldsOf(last.Values()), FieldsOf(live),
             [&](std::size_t place, auto& before, const auto& after) {
                 if (before == after)
                     return;
                 bytes.Unsigned(place);
                 Put(bytes, before);
                 Put(bytes, after);
                 before = after;
             });
    delta.Add(kFields, std::move(bytes));
}

void ApplyFields(ByteReader& bytes, Direction direction, Moment& moment)
{
    const auto fields = FieldsOf(moment.Values());
    while (!bytes.AtEnd()) {
        const std::size_t wanted = bytes.Count(std::tuple_size_v<decltype(fields)> - 1);
        EachField(fields, [&](std::size_t place, auto& field) {
            if (place == wanted)
                Step(bytes, direction, field);
        });
    }
}

// The table

/// Whether a change of a record is the user's work. A button that is pressed on the free record
/// leaves its value there: that is a choice, not yet a note.
bool IsWork(int index, const NoteRecord& before, const NoteRecord& after)
{
    const bool used = index == 0 || before.Measure != 0 || after.Measure != 0;
    return before.Measure != after.Measure || (used && before.NoteCode != after.NoteCode) ||
           before.Reserved != after.Reserved || before.BeatUnit != after.BeatUnit ||
           before.Beats != after.Beats || before.BarCode != after.BarCode ||
           before.LeftHand != after.LeftHand || before.RightHand != after.RightHand ||
           before.ChordText != after.ChordText || before.Slots != after.Slots;
}

std::vector<int> DifferentRecords(const NoteTable& a, const NoteTable& b)
{
    std::vector<int> different;
    for (int i = 0; i <= kLastRecord; ++i)
        if (a[i] != b[i])
            different.push_back(i);
    return different;
}

/// Moves the records from `at` on up by `by`, which leaves clear ones, or down by -`by`. Only
/// clear records may go.
void Shift(NoteTable& table, int at, int by)
{
    const int firstGone = by > 0 ? kLastRecord + 1 - by : at;
    for (int i = firstGone; i < firstGone + std::abs(by); ++i)
        if (!table[i].IsClear())
            throw DamagedDelta();
    if (by > 0)
        for (int i = kLastRecord; i >= at + by; --i)
            std::swap(table[i], table[i - by]);
    else
        for (int i = at; i <= kLastRecord + by; ++i)
            std::swap(table[i], table[i - by]);
}

/// A shift after which `last` is more like `live`.
struct Move {
    int At = 0;
    int By = 0;  // 0: there is none
};

constexpr std::size_t kFewRecords = 8;

Move FindMove(const Tune& live, const Tune& last, const std::vector<int>& different)
{
    const int by = live.LastNote - last.LastNote;
    if (by == 0 || different.size() < kFewRecords)
        return {};
    const int at = different.front();
    if (at + std::abs(by) > kLastRecord)
        return {};
    if (by > 0 && last.LastNote > kLastRecord - by)
        return {};
    std::size_t still = by < 0 ? static_cast<std::size_t>(-by) : 0;
    for (int i = at; i <= kLastRecord; ++i) {
        const int from = i - by;
        const bool moved = from <= kLastRecord && (by < 0 || from >= at);
        still += moved ? live[i] != last[from] : !live[i].IsClear();
    }
    return still < different.size() / 2 ? Move{at, by} : Move{};
}

void PutRecord(ByteWriter& bytes, int index, NoteRecord& before, NoteRecord after)
{
    const std::uint64_t mask = MaskOf(FieldsOf(before), FieldsOf(after));
    bytes.Unsigned(static_cast<std::uint64_t>(index));
    bytes.Unsigned(mask);
    EachPair(FieldsOf(before), FieldsOf(after), [&](std::size_t place, auto& x, auto& y) {
        if (!IsIn(mask, place))
            return;
        Put(bytes, x);
        Put(bytes, y);
        x = std::move(y);
    });
}

void TakeShift(Move move, Tune& last, DeltaWriter& delta)
{
    ByteWriter cleared;
    for (int i = move.At; i < move.At - move.By; ++i)
        if (!last[i].IsClear())
            PutRecord(cleared, i, last[i], {});
    delta.Add(kRecords, std::move(cleared));
    Shift(last.Table, move.At, move.By);
    ByteWriter bytes;
    bytes.Unsigned(static_cast<std::uint64_t>(move.At));
    bytes.Signed(move.By);
    delta.Add(kShift, std::move(bytes));
}

void TakeTable(const Tune& live, Tune& last, DeltaWriter& delta, Changes& changes)
{
    std::vector<int> different = DifferentRecords(live.Table, last.Table);
    for (int i : different)
        if (IsWork(i, last[i], live[i]))
            changes.InRecord(i);
    if (const Move move = FindMove(live, last, different); move.By != 0) {
        TakeShift(move, last, delta);
        different = DifferentRecords(live.Table, last.Table);
    }
    ByteWriter bytes;
    for (int i : different)
        PutRecord(bytes, i, last[i], live[i]);
    delta.Add(kRecords, std::move(bytes));
}

void ApplyRecords(ByteReader& bytes, Direction direction, NoteTable& table)
{
    while (!bytes.AtEnd()) {
        NoteRecord& record = table[static_cast<int>(bytes.Count(kLastRecord))];
        const std::uint64_t mask = bytes.Unsigned();
        EachField(FieldsOf(record), [&](std::size_t place, auto& field) {
            if (IsIn(mask, place))
                Step(bytes, direction, field);
        });
    }
}

void ApplyShift(ByteReader& bytes, Direction direction, NoteTable& table)
{
    const int at = static_cast<int>(bytes.Count(kLastRecord));
    const int by = bytes.Integer(at - kLastRecord, kLastRecord - at);
    Shift(table, at, direction == Direction::Forward ? by : -by);
}

// The picture on the staff

void TakePicture(const DrawSurface& live, DrawSurface& last, DeltaWriter& delta)
{
    const auto& before = last.Picture().Operations();
    const auto& after = live.Picture().Operations();
    const bool clearedBefore = last.Picture().WasCleared();
    const bool clearedAfter = live.Picture().WasCleared();
    if (before == after && clearedBefore == clearedAfter)
        return;
    const auto [b, a] = std::ranges::mismatch(before, after);
    const auto [bEnd, aEnd] = std::mismatch(before.rbegin(), std::reverse_iterator(b),
                                            after.rbegin(), std::reverse_iterator(a));
    ByteWriter bytes;
    Put(bytes, clearedBefore);
    Put(bytes, clearedAfter);
    bytes.Unsigned(static_cast<std::uint64_t>(b - before.begin()));
    bytes.Unsigned(static_cast<std::uint64_t>(bEnd - before.rbegin()));
    PutList(bytes, std::to_address(b), std::to_address(bEnd.base()));
    PutList(bytes, std::to_address(a), std::to_address(aEnd.base()));
    delta.Add(kPicture, std::move(bytes));
    last.SetPicture(live.Picture());
}

void ApplyPicture(ByteReader& bytes, Direction direction, DrawSurface& surface)
{
    bool cleared = surface.Picture().WasCleared();
    Step(bytes, direction, cleared);
    std::vector<Operation> operations = surface.Picture().Operations();
    const std::size_t prefix = bytes.Count(operations.size());
    const std::size_t suffix = bytes.Count(operations.size() - prefix);
    std::vector<Operation> before = GetList<Operation>(bytes);
    std::vector<Operation> after = GetList<Operation>(bytes);
    if (direction == Direction::Backward)
        before.swap(after);
    const auto from = operations.begin() + static_cast<std::ptrdiff_t>(prefix);
    const auto to = operations.end() - static_cast<std::ptrdiff_t>(suffix);
    if (!std::equal(from, to, before.begin(), before.end()))
        throw DamagedDelta();
    operations.insert(operations.erase(from, to), after.begin(), after.end());
    surface.SetPicture(Drawing(std::move(operations), cleared));
}

// The parked tail and the scratch files

void TakeParked(const ParkedTail& live, ParkedTail& last, DeltaWriter& delta)
{
    if (last == live)
        return;
    ByteWriter bytes;
    Put(bytes, last);
    Put(bytes, live);
    delta.Add(kParked, std::move(bytes));
    last = live;
}

void TakeScratch(const Scratch& live, Scratch& last, DeltaWriter& delta)
{
    for (std::size_t i = 0; i < last.size(); ++i) {
        if (live.at(i) == last.at(i))
            continue;
        ByteWriter bytes;
        bytes.Unsigned(i);
        Put(bytes, last.at(i));
        Put(bytes, live.at(i));
        delta.Add(kScratch, std::move(bytes));
        last.at(i) = live.at(i);
    }
}

void ApplyPart(unsigned part, ByteReader& bytes, Direction direction, Moment& moment)
{
    switch (part) {
    case kFields:
        return ApplyFields(bytes, direction, moment);
    case kRecords:
        return ApplyRecords(bytes, direction, moment.Music.Table);
    case kShift:
        return ApplyShift(bytes, direction, moment.Music.Table);
    case kPicture:
        return ApplyPicture(bytes, direction, moment.StaffBox);
    case kParked:
        return Step(bytes, direction, moment.Form.Parked);
    case kScratch:
        return Step(bytes, direction, moment.ScratchFiles.at(bytes.Count(1)));
    default:
        throw DamagedDelta();
    }
}

/// Whether fonts or margins differ.
bool PageDiffers(const PageSettings& a, const PageSettings& b)
{
    return a.BodyFontName != b.BodyFontName || a.BodyFontSize != b.BodyFontSize ||
           a.TitleFontName != b.TitleFontName || a.TitleFontSize != b.TitleFontSize ||
           a.PageLeft != b.PageLeft || a.PageRight != b.PageRight || a.PageTop != b.PageTop ||
           a.StaveSpace != b.StaveSpace || a.TitleCentered != b.TitleCentered;
}

}  // namespace

void Changes::InRecord(int record)
{
    OneRecord = OneRecord && (Record < 0 || Record == record);
    Record = record;
    Work = true;
}

std::string TakeDelta(const Values& live, const Scratch& scratch, Moment& last, bool samePicture,
                      Changes& changes)
{
    DeltaWriter delta;
    changes.Page = PageDiffers(live.Page, last.Page);
    changes.Name = live.Music.FileName != last.Music.FileName ||
                   live.Music.NumStrings != last.Music.NumStrings;
    TakeTable(live.Music, last.Music, delta, changes);
    TakeFields(live, last, delta);
    if (!samePicture)
        TakePicture(live.StaffBox, last.StaffBox, delta);
    TakeParked(live.Form.Parked, last.Form.Parked, delta);
    TakeScratch(scratch, last.ScratchFiles, delta);
    return delta.Take();
}

void Apply(std::string_view delta, Direction direction, Moment& moment)
{
    std::vector<std::pair<unsigned, std::string_view>> parts;
    for (ByteReader bytes(delta); !bytes.AtEnd();) {
        const unsigned part = bytes.Byte();
        parts.emplace_back(part, bytes.Text());
    }
    if (direction == Direction::Backward)
        std::reverse(parts.begin(), parts.end());
    for (const auto& [part, payload] : parts) {
        ByteReader bytes(payload);
        ApplyPart(part, bytes, direction, moment);
        if (!bytes.AtEnd())
            throw DamagedDelta();
    }
    if (!moment.IsSound())
        throw DamagedDelta();
}

}  // namespace quillon
