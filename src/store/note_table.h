// The note table: the whole tune as one flat table of plain records, addressed by index.
//
// Record 0 is the tune's header. From record 1 the tune is in playing order without gaps: each
// measure is one run of records with equal Measure, its head record (NoteCode kHead) first, then
// its notes and rests from left to right. A record above 0 with Measure 0 is empty, whatever its
// other fields hold. Nothing is allocated per note or per measure, and nothing sorts the table.

#pragma once

#include "store/note_codes.h"
#include "store/numbers.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

constexpr int kLastRecord = 1500;  // highest index of the table
constexpr int kStringSlots = 6;    // slots of a record, whatever the instrument

/// One record. What the fields mean depends on the kind of record:
///
/// field      note or rest                   measure head              record 0
/// Measure    measure number, from 1         measure number            0
/// NoteCode   code of a note or a rest       kHead                     title font size, 0 if none
/// XPos       x on StaffBox, points          0                         0
/// BeatUnit   lower number of the signature  the same                  0
/// Beats      upper number of the signature  the same                  0
/// Spacing    column width, units of 6 pt    0                         0
/// BeamCode   a BeamShape                    0                         0
/// BarCode    ""                             bar sign or ""            ""
/// ChordText  chord above the note           ""                        title
/// Slot(1)    string 1                       navigation sign code      first credit line
/// Slot(2)    string 2                       repeat bracket text       second credit line
/// Slot(3)    string 3                       remark                    title font name
/// Slot(4)    string 4                       ""                        tuning index as text
/// Slot(5)    string 5                       ""                        body font size as text
/// Slot(6)    string 6                       "NL": line break before   body font name
struct NoteRecord {
    Int16 Measure;
    Int16 NoteCode;
    Int16 XPos;
    Int16 Reserved;
    Int16 BeatUnit;
    Int16 Beats;
    Int16 Spacing;
    Int16 BeamCode;
    std::string BarCode;
    char LeftHand = ' ';  // one character; a blank means no fingering
    char RightHand = ' ';
    std::string ChordText;
    std::array<std::string, kStringSlots> Slots;

    bool operator==(const NoteRecord&) const = default;

    /// What is played on string s, 1 (top line) to 6. Any other s is a subscript Fault.
    std::string& Slot(int s) { return Slots[SlotIndex(s)]; }
    const std::string& Slot(int s) const { return Slots[SlotIndex(s)]; }

    void Clear();
    bool IsClear() const;
    bool IsHead() const { return NoteCode == kHead; }
    bool IsRest() const { return IsRestCode(NoteCode); }

    /// The highest string with a text in its slot, 0 if all are empty.
    int HighestFilledSlot() const;

private:
    static std::size_t SlotIndex(int s)
    {
        if (s < 1 || s > kStringSlots)
            throw Fault(Error::SubscriptOutOfRange);
        return static_cast<std::size_t>(s - 1);
    }
};

/// How many characters a text has; each byte is one.
constexpr int Length(std::string_view text)
{
    return static_cast<int>(text.size());
}

/// What a one-character field keeps of a text: its first character, or a blank if it is empty.
char OneCharacter(std::string_view text);

class NoteTable {
public:
    NoteTable() : records(kLastRecord + 1) {}

    /// Record 0..1500. Any other index is a subscript Fault.
    NoteRecord& operator[](int index) { return records[Checked(index)]; }
    const NoteRecord& operator[](int index) const { return records[Checked(index)]; }

    /// Clears the records from..to, inclusive.
    void Clear(int from = 0, int to = kLastRecord);

private:
    static std::size_t Checked(int index)
    {
        if (index < 0 || index > kLastRecord)
            throw Fault(Error::SubscriptOutOfRange);
        return static_cast<std::size_t>(index);
    }

    std::vector<NoteRecord> records;
};

}  // namespace quillon
