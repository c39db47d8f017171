// Plays MIDI files through the sound device.

#pragma once

#include <functional>
#include <string>

namespace quillon {

class Player {
public:
    virtual ~Player() = default;

    /// Opens the synthesizer and the sound device; false when there is no working sound.
    virtual bool Init() = 0;

    /// What keeps it from working, in a sentence, when Init has said so.
    virtual std::string Trouble() const = 0;

    /// Stops and releases everything. Never fails; Init may follow.
    virtual void Close() = 0;

    /// Takes the file at `path` as the tune to play. An unreadable file is a Fault.
    virtual void Load(const std::string& path) = 0;

    /// The same with the bytes of a file.
    virtual void LoadBytes(const std::string& midi) = 0;
    virtual bool HasTune() const = 0;

    virtual void Play(bool forEver) = 0;
    virtual void Stop() = 0;

    /// The tick of the tune that is heard at this moment, while it plays: later than the one that
    /// has been made ready for the device. What plays for ever counts from 0 again each time.
    virtual int TickHeard() const = 0;

    /// Factor on the file's own tempo, effective at once; 0 pauses. 1 after Init.
    virtual void SetTempoFactor(double factor) = 0;

    /// Master volume in hundredths of a decibel, effective at once. 0 after Init.
    virtual void SetVolume(int hundredthsOfDecibel) = 0;

    /// Called on the window's thread when a tune has played to its end, not after Stop.
    std::function<void()> OnEnd;

    /// Called on the window's thread when a tune that was started cannot be played, or its end
    /// cannot be told: the sound device has gone.
    std::function<void()> OnFailure;
};

/// The MIDI output devices of the machine.
class MidiPorts {
public:
    virtual ~MidiPorts() = default;

    virtual int Count() const = 0;

    /// Product name of device 0..Count-1; -1 is the system's default device.
    virtual std::string Name(int index) const = 0;
};

}  // namespace quillon
