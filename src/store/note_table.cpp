#include "store/note_table.h"

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

struct CodeRow {
    int code;
    int ticks;
    int spacing;
    int pageWidth;
    int value;
    bool triplet;
};

constexpr CodeRow kCodes[] = {
    {1,  2,  2,  2,  1,  true },
    {2,  3,  2,  2,  2,  false},
    {3,  4,  2,  2,  3,  true },
    {4,  6,  3,  2,  4,  false},
    {5,  9,  3,  2,  5,  false},
    {6,  8,  3,  2,  6,  true },
    {7,  12, 4,  3,  7,  false},
    {8,  18, 4,  3,  8,  false},
    {9,  24, 8,  5,  9,  false},
    {10, 36, 12, 8,  10, false},
    {11, 48, 16, 12, 11, false},
    {92, 24, 8,  5,  9,  false},
    {93, 48, 16, 12, 11, false},
    {94, 2,  2,  3,  1,  true },
    {95, 3,  2,  3,  2,  false},
    {96, 4,  2,  3,  3,  true },
    {97, 6,  3,  3,  4,  false},
    {98, 8,  3,  3,  6,  true },
    {99, 12, 4,  3,  7,  false},
};
static_assert(std::size(kCodes) == kNoteValues + kRests);

constexpr int kRestCodes[] = {0, 94, 95, 96, 97, 97, 98, 99, 99, 92, 92, 93};
static_assert(std::size(kRestCodes) == kNoteValues + 1);

constexpr CodeRow kNoRow{};

const CodeRow& RowOf(int noteCode)
{
    const auto row = std::find_if(std::begin(kCodes), std::end(kCodes),
                                  [&](const CodeRow& r) { return r.code == noteCode; });
    return row == std::end(kCodes) ? kNoRow : *row;
}

}  // namespace

void NoteRecord::Clear()
{
    Measure = NoteCode = XPos = Reserved = BeatUnit = Beats = Spacing = BeamCode = 0;
    BarCode.clear();
    ChordText.clear();
    LeftHand = RightHand = ' ';
    for (std::string& slot : Slots)
        slot.clear();
}

bool NoteRecord::IsClear() const
{
    return Measure == 0 && NoteCode == 0 && XPos == 0 && Reserved == 0 && BeatUnit == 0 &&
           Beats == 0 && Spacing == 0 && BeamCode == 0 && BarCode.empty() && ChordText.empty() &&
           LeftHand == ' ' && RightHand == ' ' && HighestFilledSlot() == 0;
}

int NoteRecord::HighestFilledSlot() const
{
    for (int s = kStringSlots; s >= 1; --s)
        if (!Slot(s).empty())
            return s;
    return 0;
}

char OneCharacter(std::string_view text)
{
    return text.empty() ? ' ' : text.front();
}

void NoteTable::Clear(int from, int to)
{
    for (int i = from; i <= to; ++i)
        (*this)[i].Clear();
}

int TicksOf(int noteCode)
{
    return RowOf(noteCode).ticks;
}

int SpacingOf(int noteCode)
{
    return RowOf(noteCode).spacing;
}

int PageWidthOf(int noteCode)
{
    return RowOf(noteCode).pageWidth;
}

bool IsTriplet(int noteCode)
{
    return RowOf(noteCode).triplet;
}

int RestCodeOf(int value)
{
    return IsNoteValue(value) ? kRestCodes[value] : 0;
}

int ValueOf(int noteCode)
{
    return RowOf(noteCode).value;
}

}  // namespace quillon
