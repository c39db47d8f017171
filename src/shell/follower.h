// What the page shows while music plays: a band on the measure that sounds, and the part of the
// pages that is in view with it.
//
// The window turns pages as a good page turner does: what comes next is in view before it is
// played. Where both lines have room, the next one is in view all along. Where they have not, the
// page is turned when half of the last measure before it has been played. Lengths are twips.

#pragma once

#include "midi/play_positions.h"
#include "notation/page_view.h"
#include "notation/placed_lines.h"

#include <optional>
#include <vector>

namespace quillon {

/// What is in view of the pages: one page, from `Top` on.
struct PageWindow {
    int Page = 0;
    double Top = 0;

    bool operator==(const PageWindow&) const = default;
};

/// A part of a page.
struct Band {
    int Page = 0;
    double Left = 0;
    double Top = 0;
    double Right = 0;
    double Bottom = 0;

    bool operator==(const Band&) const = default;
};

class Follower {
public:
    /// What plays `forEver` begins again at the end.
    Follower(PlayPositions playPositions, bool playsForEver, std::vector<PlacedLine> placedLines);

    /// Finds out which lines the pages show as they are. No other line gets a band.
    void Look(const PageView& pages);

    std::optional<Band> BandAt(int tick) const;

    /// What should be in view, where `now` is, in a window of that height.
    PageWindow WindowAt(int tick, const PageWindow& now, double height) const;

private:
    struct Place {
        int Line = -1;  // none
        int Measure = 0;
    };

    int Count() const { return static_cast<int>(positions.Measures.size()); }
    int IndexAt(int tick) const;
    bool IsHalfOver(int index, int tick) const;
    const PlacedLine* LineOf(int index) const;
    int NextOnAnotherLine(int index) const;

    PlayPositions positions;
    bool forEver;
    std::vector<PlacedLine> lines;
    std::vector<bool> shown;    // of each line
    std::vector<Place> places;  // of each measure that sounds
};

}  // namespace quillon
