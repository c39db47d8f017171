#include "exchange/music.h"

#include "exchange/text.h"

#include <algorithm>

namespace quillon {

namespace {

using Measures = std::vector<MusicMeasure>;

/// Where the walk through the repeats is.
struct Walk {
    const Measures& measures;
    int at = 0;
    int start = 0;  // where the section in hand begins
    int pass = 1;
    bool strays = false;

    int Count() const { return static_cast<int>(measures.size()); }

    bool IsFor(int measure) const { return std::ranges::count(measures[measure].Endings, pass); }

    /// How often the section in hand is played if the measure here ends it.
    int Passes() const
    {
        int passes = 2;
        bool bracket = false;
        for (int i = start; i < Count(); ++i) {
            const MusicMeasure& measure = measures[i];
            bracket = bracket || !measure.Endings.empty();
            if (i > at && (measure.StartsRepeat || !bracket))
                break;
            for (const int ending : measure.Endings)
                passes = std::max(passes, ending);
        }
        return passes;
    }

    void Enter()
    {
        if (measures[at].StartsRepeat && at != start) {
            start = at;
            pass = 1;
        }
        if (measures[at].Endings.empty() || IsFor(at))
            return;
        // An ending that nobody wrote is not missed.
        for (int i = at + 1; i < Count() && !measures[i].StartsRepeat; ++i)
            if (IsFor(i)) {
                at = i;
                return;
            }
        strays = true;
    }

    void Leave()
    {
        if (!measures[at].EndsRepeat) {
            ++at;
        } else if (pass < Passes()) {
            ++pass;
            at = start;
        } else {
            start = ++at;
            pass = 1;
        }
    }
};

}  // namespace

bool LeadsToCoda(const MusicMeasure& measure)
{
    return Lowered(measure.Remark) == "/to coda";
}

bool IsJump(const MusicMeasure& measure)
{
    const std::string& sign = measure.Sign;
    return sign == kDcAlCoda || sign == kDcAlFine || sign == kDsAlCoda || sign == kDsAlFine;
}

Units LengthOf(const MusicMeasure& measure)
{
    Units length = 0;
    for (const MusicEvent& event : measure.Events)
        length += event.Length;
    return length;
}

Playing PlayingOf(const Music& music)
{
    Playing playing;
    Walk walk{music.Measures};
    while (walk.at < walk.Count() && static_cast<int>(playing.Order.size()) < kMostPlayed) {
        walk.Enter();
        const int here = walk.at;
        playing.Order.push_back(here);
        walk.Leave();
        if (walk.at <= here)
            playing.GoneBack.emplace(here, walk.at);
    }
    playing.Strays = walk.strays;
    return playing;
}

std::vector<int> JumpingOrder(const Music& music)
{
    const Measures& measures = music.Measures;
    const auto jump = std::ranges::find_if(measures, IsJump);
    if (jump == measures.end())
        return {};
    const bool fromSign = jump->Sign == kDsAlCoda || jump->Sign == kDsAlFine;
    const bool toCoda = jump->Sign == kDsAlCoda || jump->Sign == kDcAlCoda;
    const auto start =
        fromSign ? std::ranges::find(measures, kSign, &MusicMeasure::Sign) : measures.begin();
    const auto end = toCoda ? std::ranges::find_if(start, measures.end(), LeadsToCoda)
                            : std::ranges::find(start, measures.end(), kFine, &MusicMeasure::Sign);
    const auto coda = std::ranges::find(measures, kCoda, &MusicMeasure::Sign);
    if (start > jump || end < start || end == measures.end() || (toCoda && coda == measures.end()))
        return {};
    std::vector<int> order;
    const auto play = [&](auto from, auto to) {
        for (; from < to; ++from)
            order.push_back(static_cast<int>(from - measures.begin()));
    };
    play(measures.begin(), jump + 1);
    play(start, end + 1);
    if (toCoda)
        play(coda, measures.end());
    return order;
}

Music WrittenOut(const Music& music)
{
    Music out = music;
    out.Measures.clear();
    for (const int at : PlayingOf(music).Order) {
        MusicMeasure& measure = out.Measures.emplace_back(music.Measures[at]);
        measure.StartsRepeat = measure.EndsRepeat = false;
        measure.Endings.clear();
        measure.EndingText.clear();
    }
    return out;
}

}  // namespace quillon
