// The software synthesizer: its SoundFont, its room, and where in it the strings are.

#pragma once

#include "midi/midi_events.h"

#include <fluidsynth.h>
#include <memory>
#include <string>

namespace quillon {

/// Deletes objects of the synthesizer library.
struct FluidDelete {
    void operator()(fluid_settings_t* settings) const { delete_fluid_settings(settings); }
    void operator()(fluid_synth_t* synth) const { delete_fluid_synth(synth); }
    void operator()(fluid_player_t* player) const { delete_fluid_player(player); }
    void operator()(fluid_audio_driver_t* driver) const { delete_fluid_audio_driver(driver); }
    void operator()(fluid_file_renderer_t* renderer) const { delete_fluid_file_renderer(renderer); }
};

template <typename T> using FluidPtr = std::unique_ptr<T, FluidDelete>;

/// An environment variable, "" if it is not set.
std::string Environment(const char* name);

/// The path of a General MIDI SoundFont: the one that QUILLON_SOUNDFONT names, else the system's;
/// "" if there is none.
std::string FindSoundFont();

FluidPtr<fluid_settings_t> MakeSettings(double gain);

/// Null without a SoundFont that can be read.
FluidPtr<fluid_synth_t> MakeSynth(fluid_settings_t* settings);

bool IsMidiFile(const std::string& bytes);

/// Seats the strings side by side in front of the listener, the lowest on the left, in a small
/// room. The MIDI file says nothing of that: it is told to the synthesizer before each program
/// change.
class Stage {
public:
    Stage() = default;

    /// For a file with these events, whose string s is channel s.
    Stage(fluid_synth_t* theSynth, const TimedEvents& events);

    void Send(const TimedEvent& event) const;

    /// Takes what `player` sends. The stage must outlive it.
    void Follow(fluid_player_t* player);

private:
    static int OnEvent(void* self, fluid_midi_event_t* event);
    void Seat(int string) const;

    fluid_synth_t* synth = nullptr;
    int strings = 0;
};

}  // namespace quillon
