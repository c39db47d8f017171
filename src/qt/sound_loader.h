// Sound and MIDI devices, loaded when first asked for: their libraries would cost every start a
// tenth of its time, and most starts play nothing.

#pragma once

#include "platform/player.h"

#include <memory>

namespace quillon {

/// The synthesizer's player once Init has run; before that there is none, and nothing plays.
class LoadedPlayer : public Player {
public:
    bool Init() override;
    std::string Trouble() const override;
    void Close() override;
    void Load(const std::string& path) override;
    void LoadBytes(const std::string& midi) override;
    bool HasTune() const override;
    void Play(bool forEver) override;
    void Stop() override;
    int TickHeard() const override;
    void SetTempoFactor(double factor) override;
    void SetVolume(int hundredthsOfDecibel) override;

private:
    std::unique_ptr<Player> player;
};

class LoadedMidiPorts : public MidiPorts {
public:
    int Count() const override;
    std::string Name(int index) const override;

private:
    mutable std::unique_ptr<MidiPorts> ports;
};

}  // namespace quillon
