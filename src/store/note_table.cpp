#include "store/note_table.h"

namespace quillon {

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

}  // namespace quillon
