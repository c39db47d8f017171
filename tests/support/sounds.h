// Short tunes to be heard, and WAV files as samples, for the tests.

#pragma once

#include "midi/performance.h"
#include "support/tunes.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace quillon {

inline std::string MidiOf(Tune& tune)
{
    const Sound sound{
        300, 25, {64, 59, 55, 50, 45, 40}
    };
    MidiFileWriter writer;
    BuildMidiFile(tune, sound, writer);
    return writer.Bytes();
}

/// Quarters of 0.2 seconds on fret 5 of a guitar's string; on the first that is the concert A.
inline std::string Midi(int quarters, int string = 1)
{
    Tune tune;
    AddMeasure(tune);
    for (int i = 0; i < quarters; ++i)
        AddNote(tune, kQuarter, string, "5");
    return MidiOf(tune);
}

inline std::string ChordMidi()
{
    Tune tune;
    AddMeasure(tune);
    for (int i = 0; i < 4; ++i)
        AddNote(tune, kQuarter).Slots = {"0", "1", "0", "2", "3", "3"};
    return MidiOf(tune);
}

/// Samples between -1 and 1.
struct Sides {
    std::vector<double> Left;
    std::vector<double> Right;
};

/// Of a stereo file of 16 bits, whose header takes 44 bytes.
inline Sides SidesOf(const std::string& wav)
{
    const auto sample = [&](std::size_t at) {
        return (static_cast<unsigned char>(wav[at]) | static_cast<signed char>(wav[at + 1]) * 256) /
               32768.0;
    };
    Sides sides;
    for (std::size_t i = 44; i + 3 < wav.size(); i += 4) {
        sides.Left.push_back(sample(i));
        sides.Right.push_back(sample(i + 2));
    }
    return sides;
}

inline double Peak(const std::vector<double>& samples)
{
    double peak = 0;
    for (const double sample : samples)
        peak = std::max(peak, std::fabs(sample));
    return peak;
}

inline double Peak(const Sides& sides)
{
    return std::max(Peak(sides.Left), Peak(sides.Right));
}

/// From sample `from` on, for half of what there is.
inline double Energy(const std::vector<double>& samples, std::ptrdiff_t from)
{
    double energy = 0;
    const auto begin = samples.begin() + from;
    for (auto at = begin; at != begin + static_cast<std::ptrdiff_t>(samples.size() / 2); ++at)
        energy += *at * *at;
    return energy;
}

}  // namespace quillon
