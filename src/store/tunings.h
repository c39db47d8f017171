// Tunings: for each instrument a list of named tunings in a small text file of its own.
//
// A line of the file is a name and the MIDI note number of each open string, string 1 first. The
// first line is the default tuning. A file that cannot be opened or read is silently replaced by
// the instrument's default rows.

#pragma once

#include "store/item_file.h"
#include "store/tune.h"

#include <array>
#include <string>
#include <vector>

namespace quillon {

constexpr int kLastTuning = 50;      // highest index of the list
constexpr int kShortStringFret = 5;  // of the neck, where the banjo's short string begins

struct TuningRecord {
    std::string TuningName;
    std::array<Int16, kStringSlots> Pitches;  // MIDI note numbers; above NumStrings meaningless

    /// Pitch of the open string s, 1..6.
    Int16& Pitch(int s) { return Pitches.at(static_cast<std::size_t>(s - 1)); }
    const Int16& Pitch(int s) const { return Pitches.at(static_cast<std::size_t>(s - 1)); }
};

struct Tunings {
    std::vector<TuningRecord> List = std::vector<TuningRecord>(kLastTuning + 1);
    std::array<Int16, kStringSlots> CurTuning;

    /// Tuning 0..50. Any other index is a subscript Fault.
    TuningRecord& operator[](int index)
    {
        if (index < 0 || index > kLastTuning)
            throw Fault(Error::SubscriptOutOfRange);
        return List[static_cast<std::size_t>(index)];
    }
};

/// The rows that a new tuning file of the instrument starts with.
std::vector<TuningRecord> DefaultTunings(int numStrings);

/// Writes the first `count` tunings of `list`, each with its name and `numStrings` pitches.
void WriteTunings(const std::string& path, const std::vector<TuningRecord>& list, int count,
                  int numStrings);

/// Writes the default rows of the instrument.
void RebuildTuningFile(const std::string& path, int numStrings);

/// Reads rows into `tunings` from index 0 up to the end of the file and returns how many there
/// are. Each has a name and `numStrings` pitches; the pitches above stay as they were. A 52nd row
/// is a subscript Fault, an incomplete one an input-past-end Fault.
int ReadTunings(ItemReader& reader, int numStrings, Tunings& tunings);

/// As above, for a whole file. An unreadable file is rebuilt and read again.
int LoadTunings(const std::string& path, int numStrings, Tunings& tunings);

/// Reads the first tuning of the file as the active one: always the name and six numbers,
/// whatever the row holds, so on instruments of fewer strings the surplus numbers come from the
/// next row. A file without that many items is rebuilt and read again. Returns whether it was.
bool LoadActiveTuning(const std::string& path, int numStrings, Tunings& tunings);

}  // namespace quillon
