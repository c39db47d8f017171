// The line of state: in a few words, which tune this is, whether its file has it, which page is
// shown, and whether the measure in view adds up. What goes without saying is left out.

#pragma once

#include "shell/main_win.h"

#include <string>

namespace quillon {

/// What the line tells, as values that are cheap to compare.
struct TuneState {
    std::string FileName;  // path, "" when the tune has none
    bool Changed = false;
    std::string Trouble;  // why its work is not being kept, "" if it is
    std::string Sound;    // why nothing is heard, "" when nothing is wrong
    int Page = 0;         // the shown one, from 1
    int Pages = 0;        // 0: the tune has not been laid out
    int Measure = 0;
    int TicksTooMany = 0;  // in the measure; below 0: missing; 0: nothing to tell
    int BeatUnit = 4;

    bool operator==(const TuneState&) const = default;
};

/// `changed`: the table is not what the file has. A measure is told of when it is finished: it may
/// be short while it is the tune's last, or is being inserted, or is measure 1, as a pickup.
TuneState StateOf(const MainWin& win, bool changed);

/// The parts of the line, "" for what there is nothing to tell about.
struct StateLine {
    std::string Name;     // the file's, in the file system's own bytes, or "New tune"
    std::string Changed;  // all others in UTF-8
    std::string Page;
    std::string Measure;
    std::string Sound;
};

StateLine LineOf(const TuneState& state);

/// A number of ticks in words: "½ beat", "1⅓ beats".
std::string BeatsInWords(int ticks, int ticksPerBeat);

}  // namespace quillon
