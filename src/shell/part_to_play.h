// What is to be heard of a tune from the strip: a part of it, once or in a loop.

#pragma once

#include "midi/practice.h"

#include <optional>

namespace quillon {

struct PartToPlay {
    int From = 1;           // number of a measure, the first time that it is played
    std::optional<int> To;  // the end, without it
    PracticeChoices Choices;
    bool Loop = false;  // for about an hour, instead of Choices.Turns
};

/// As MakePractice; a part that is never played is an error in words too.
PracticeTrack BuildPart(Tune& tune, const Sound& sound, const PartToPlay& part);

}  // namespace quillon
