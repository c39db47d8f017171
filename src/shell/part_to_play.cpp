#include "shell/part_to_play.h"

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

constexpr double kLoopSeconds = 3600;

int TurnsOfLoop(const PlayPositions& positions, const PlayedPart& part,
                const PracticeChoices& choices)
{
    const double seconds = positions.SecondsAt(positions.EndOf(part.Last)) -
                           positions.SecondsAt(positions.Measures[part.First].Begin);
    const int speed = choices.StepUp > 0 ? std::max(choices.Speed, choices.Goal) : choices.Speed;
    const double turns = kLoopSeconds * speed / 100 / std::max(seconds, 1.0);
    return static_cast<int>(std::clamp(std::ceil(turns), 1.0, double{kMostTurns}));
}

}  // namespace

PracticeTrack BuildPart(Tune& tune, const Sound& sound, const PartToPlay& part)
{
    const PlayPositions positions = PositionsOf(tune, sound);
    const PlayedPart played = PartOf(positions, part.From, part.To);
    PracticeChoices choices = part.Choices;
    if (part.Loop)
        choices.Turns = TurnsOfLoop(positions, played, choices);
    return MakePractice(tune, sound, played, choices);
}

}  // namespace quillon
