// The MIDI output devices of the machine.

#pragma once

#include "platform/player.h"

#include <vector>

namespace quillon {

/// Without a sequencer there are none.
class RtMidiPorts : public MidiPorts {
public:
    /// Looks for the devices again.
    int Count() const override;

    /// Of the devices that Count has found.
    std::string Name(int index) const override;

private:
    mutable std::vector<std::string> names;
};

}  // namespace quillon
