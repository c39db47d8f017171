// The tune: the note table, and the few numbers that say where it ends and where the cursor is.
//
// There is one for the whole run. It is passed by reference and indexed directly everywhere.

#pragma once

#include "store/note_table.h"

#include <string>
#include <string_view>

namespace quillon {

struct Tune {
    NoteTable Table;
    Int16 NumStrings = 6;  // 4, 5 or 6: the instrument
    Int16 LastNote;        // highest record in use, 0 when the tune is empty
    Int16 LastMeas;        // highest measure number in use, 0 when the tune is empty
    Int16 CurNote;         // record under the cursor, or the next free one
    Int16 CurMeas;         // measure in the measure view
    std::string FileName;  // path of the tune's file, "" when it has none

    NoteRecord& operator[](int index) { return Table[index]; }
    const NoteRecord& operator[](int index) const { return Table[index]; }
};

/// What depends on the number of strings. There are no modes for other numbers.
struct InstrumentMode {
    int NumStrings;
    const char* Command;          // menu command that chooses it
    const char* Caption;          // of MainWin
    const char* FileCaption;      // of MainWin, when a file was named on the command line
    const char* Extension;        // of tune files
    const char* FileFilter;       // of the open dialog
    const char* TuningFile;       // in the program's own folder
    const char* SettingsSection;  // for tuning, instrument and tempo

    // Until the user says otherwise
    int Instrument;  // General MIDI program, from 0
    int Tempo;       // beats per minute
};

// clang-format off
inline constexpr InstrumentMode kInstrumentModes[] = {
    {6, "mnuGuitar",
     "LYRANO Tablature Editor for Guitar", "Lyrano - Tablature Editor for Guitar",
     "gui", "Guitar Files (*.gui)|*.gui|All Files (*.*)|*.*",
     "Strings6.tun", "Guitar", 25, 130},
    {5, "mnuBanjo",
     "LYRANO Tablature Editor for Banjo", "Lyrano - Tablature Editor for Banjo",
     "bjo", "Banjo Files (*.bjo)|*.bjo|All Files (*.*)|*.*",
     "Strings5.tun", "Banjo", 105, 210},
    {4, "mnuMandolin",
     "LYRANO Tablature Editor for Mandolin/Bass", "Lyrano - Tablature Editor for Mandolin/Bass",
     "bss", "Bass Files (*.bss)|*.bss|All Files (*.*)|*.*",
     "Strings4.tun", "Bass", 25, 130},
};
// clang-format on

/// The mode for tunes with this extension (without the dot); null for any other text. Capitals do
/// not match.
constexpr const InstrumentMode* FindModeOfExtension(std::string_view extension)
{
    for (const InstrumentMode& mode : kInstrumentModes)
        if (extension == mode.Extension)
            return &mode;
    return nullptr;
}

/// The mode of 6, 5 or 4 strings; null for any other number.
constexpr const InstrumentMode* FindMode(int numStrings)
{
    for (const InstrumentMode& mode : kInstrumentModes)
        if (mode.NumStrings == numStrings)
            return &mode;
    return nullptr;
}

}  // namespace quillon
