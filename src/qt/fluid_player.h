// Playing MIDI files with a software synthesizer.
//
// The sound device is driven by a thread of the synthesizer. It reports the end of a tune with a
// queued call, so that the window hears of it between other events of its own thread.
//
// That thread ends silently when its device goes away: a sound server that is restarted,
// a device that is unplugged, a full disk under a sound file. So a playback of which nothing is
// heard any more is reported as a failure, and the next one opens the device again.

#pragma once

#include "platform/player.h"
#include "qt/synth.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <chrono>

namespace quillon {

/// Environment: QUILLON_AUDIO_DRIVER names the sound driver ("pulseaudio", "alsa", "file", ...;
/// without it the first two are tried in this order), QUILLON_AUDIO_FILE the sound file that the
/// driver "file" writes in real time. An empty name is none.
class FluidPlayer : public Player {
public:
    /// A playback of which nothing is heard for as long as `silence` is reported as a failure.
    /// Ticks are much closer to each other, even in the slowest tune at the lowest tempo factor.
    explicit FluidPlayer(std::chrono::milliseconds silence = std::chrono::seconds(2));
    ~FluidPlayer() override { Close(); }

    bool Init() override;
    std::string Trouble() const override { return trouble; }
    void Close() override;
    void Load(const std::string& path) override;
    void LoadBytes(const std::string& midi) override;
    bool HasTune() const override { return player != nullptr; }
    void Play(bool forEver) override;
    void Stop() override;
    int TickHeard() const override;
    void SetTempoFactor(double factor) override;
    void SetVolume(int hundredthsOfDecibel) override;

private:
    bool OpenDriver();
    double BufferedSeconds() const;
    void Listen();
    void Ended(int playNumber);
    static int OnTick(void* self, int tick);

    FluidPtr<fluid_settings_t> settings;
    FluidPtr<fluid_synth_t> synth;
    Stage stage;
    FluidPtr<fluid_player_t> player;
    FluidPtr<fluid_audio_driver_t> driver;  // goes first, see Load

    std::string trouble;      // of the last Init
    int ticksPerQuarter = 1;  // of the tune
    double tempoFactor = 1;
    bool playing = false;  // from Play to Stop or the end, also while it is halted
    int plays = 0;         // numbers them, so that a late end is told from the present play's

    /// Number of the play whose end is to be told, 0 for none. Shared with the sound thread.
    std::atomic<int> watchedPlay = 0;

    QTimer listening;                 // while the tune should move on
    std::atomic<bool> heard = false;  // a tick since Listen last asked. Set by the sound thread.
    bool silent = false;              // there was none: the driver is of no use any more

    QObject receiver;  // of queued calls; those that are still under way go with it
};

}  // namespace quillon
