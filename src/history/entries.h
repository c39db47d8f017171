// What a journal holds, as bytes: where a run began, and how its timeline grew.

#pragma once

#include "history/timeline.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// The beginning of a timeline, with the arguments of its constructor.
std::string EntryOf(Moment start, const std::string& written, const std::string& detour);

// What a timeline grew by.
std::string EntryOf(const Event& event);
std::string EntryOf(const Step& step);
std::string EntryOfUndone(const Step& step);
std::string EntryOf(int back);  // steps that were undone, or -`back` that were redone

/// The entries of a whole timeline from the end of step `place` on: a beginning, and its growth.
std::vector<std::string> EntriesOf(const Timeline& timeline, int place);

// What these read may be any bytes. A DamagedDelta if they do not fit.

Timeline BeginningFrom(std::string_view entry);
void Replay(std::string_view entry, Timeline& timeline);

}  // namespace quillon
