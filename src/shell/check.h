// What is wrong with a tune: what its file cannot hold, what its measures do not add up to, what
// its repeats and signs never reach, what fits no page, and what spoils one.
//
// None of it prevents a tune from being opened. A check finds what the eye and the ear would find
// later, and changes nothing but the tune's CurNote and the pages.

#pragma once

#include "notation/draw_surface.h"
#include "notation/page_view.h"
#include "store/page_settings.h"
#include "store/tune.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Frets above this one are assumed to be typing errors: the longest necks have 24.
constexpr int kHighestFret = 24;

struct Finding {
    int Measure = 0;  // 0: the whole tune
    std::string Reason;

    /// "measure N: reason", or the reason alone.
    std::string Text() const;
};

/// What only the bytes of the tune's file show: an empty file, and texts with a double quote.
/// Nothing escapes those, so what was read of them is not what was written.
std::vector<Finding> CheckTexts(std::string_view fileBytes);

/// Records out of order, measures that do not add up to their time signature (the last may be
/// short), strings and frets that the instrument does not have.
std::vector<Finding> CheckRecords(const Tune& tune);

/// Repeats without a partner, D.S. without a Sign. A repeat sign before any repeat start has the
/// tune's beginning as its partner.
std::vector<Finding> CheckSigns(const Tune& tune);

/// Endings, Codas and Fines that the performance does not reach, and what stops it or keeps it from
/// coming to an end.
std::vector<Finding> CheckPerformance(Tune& tune);

/// A measure that is too wide for a line (the first one, on screen and on paper), too many pages.
std::vector<Finding> CheckPages(const Tune& tune, PageSettings& page, PageView& pages,
                                const TextMetrics& metrics);

/// Texts that run into each other or off the paper, and an empty page at the end.
std::vector<Finding> CheckPaper(const std::vector<Drawing>& printedPages,
                                const TextMetrics& metrics);

/// Strings that should sound together and are heard one after the other: each track's notes have
/// whole ticks, and at most tempos half of an odd number of them is lost or gained with each
/// hammer-on, pull-off and slide.
std::vector<Finding> CheckTogether(Tune& tune, int tempo);

/// All of the above but the texts, played at `tempo` beats per minute.
std::vector<Finding> CheckTune(Tune& tune, PageSettings& page, PageView& pages,
                               const TextMetrics& metrics, int tempo);

/// The measures in the order in which the tune is played. One that cannot be performed is a Fault
/// or a NeverEnding.
std::vector<int> MeasureOrder(Tune& tune);

/// The same for the eye: "1-8, 1-7, 9-16".
std::string OrderInRuns(const std::vector<int>& measures);

}  // namespace quillon
