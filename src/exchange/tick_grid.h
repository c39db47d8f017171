// Lengths that the note table has: whole ticks, 12 to the quarter, made of one or more of its
// values.

#pragma once

#include "exchange/music.h"
#include "exchange/notices.h"

#include <vector>

namespace quillon {

/// No note of the table is shorter.
constexpr int kShortestTicks = 2;

/// The codes of the notes (or rests) that together last `ticks`, in the order in which they are
/// written from tick `at` of a measure on: as few as there can be, the longest first on a beat and
/// last off the beat. `ticks` is 2 at least.
std::vector<int> CodesOfTicks(int ticks, int at, bool rest);

/// Moves the beginnings of events to ticks. Exact lengths stay. Two notes too short for the table
/// that can share a cell are linked, and keep half of the cell's ticks each; what is shorter still
/// is left out.
void FitToTicks(Music& music, Notices& notices);

}  // namespace quillon
