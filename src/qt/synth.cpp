#include "qt/synth.h"

#include "midi/midi_bytes.h"

#include <QStandardPaths>

namespace quillon {

namespace {

// Controllers, and values of them from 0 to 127
constexpr int kPan = 10;
constexpr int kReverbSend = 91;
constexpr int kCentre = 64;
constexpr int kOutermost = 16;  // from the centre: 3.5 dB between left and right
constexpr int kRoom = 40;

// A status byte's halves
constexpr int kKind = 0xF0;
constexpr int kChannel = 0x0F;

}  // namespace

std::string FindSoundFont()
{
    std::string named = Environment("QUILLON_SOUNDFONT");
    if (!named.empty())
        return named;
    for (const char* name :
         {"sf2/default-GM.sf2", "sf2/FluidR3_GM.sf2", "sf2/TimGM6mb.sf2", "sf3/default-GM.sf3"}) {
        const QString path =
            QStandardPaths::locate(QStandardPaths::GenericDataLocation, QString("sounds/") + name);
        if (!path.isEmpty())
            return path.toLocal8Bit().toStdString();
    }
    return {};
}

std::string Environment(const char* name)
{
    return qEnvironmentVariable(name).toLocal8Bit().toStdString();
}

FluidPtr<fluid_settings_t> MakeSettings(double gain)
{
    for (const int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG})
        fluid_set_log_function(level, nullptr, nullptr);
    FluidPtr<fluid_settings_t> settings(new_fluid_settings());
    fluid_settings_setint(settings.get(), "synth.lock-memory", 0);
    fluid_settings_setnum(settings.get(), "synth.gain", gain);
    fluid_settings_setint(settings.get(), "synth.chorus.active", 0);
    fluid_settings_setnum(settings.get(), "synth.reverb.room-size", 0.2);
    fluid_settings_setnum(settings.get(), "synth.reverb.damp", 0);
    fluid_settings_setnum(settings.get(), "synth.reverb.width", 0.5);
    fluid_settings_setnum(settings.get(), "synth.reverb.level", 0.9);
    return settings;
}

FluidPtr<fluid_synth_t> MakeSynth(fluid_settings_t* settings)
{
    FluidPtr<fluid_synth_t> synth(new_fluid_synth(settings));
    const std::string soundFont = FindSoundFont();
    if (!synth || soundFont.empty() ||
        fluid_synth_sfload(synth.get(), soundFont.c_str(), true) == FLUID_FAILED)
        return nullptr;
    return synth;
}

bool IsMidiFile(const std::string& bytes)
{
    return bytes.starts_with("MThd");
}

Stage::Stage(fluid_synth_t* theSynth, const TimedEvents& events) : synth(theSynth)
{
    for (const TimedEvent& event : events.Events)
        if ((event.Status & kKind) == kProgramChange)
            ++strings;
}

void Stage::Send(const TimedEvent& event) const
{
    const int channel = event.Status & kChannel;
    if ((event.Status & kKind) == kProgramChange) {
        Seat(channel);
        fluid_synth_program_change(synth, channel, event.Data1);
    } else if ((event.Status & kKind) == kNoteOn) {
        fluid_synth_noteon(synth, channel, event.Data1, event.Data2);
    }
}

void Stage::Follow(fluid_player_t* player)
{
    fluid_player_set_playback_callback(player, &Stage::OnEvent, this);
}

/// A player resets the synthesizer whenever it likes, but sends the programs after that.
int Stage::OnEvent(void* self, fluid_midi_event_t* event)
{
    const auto* stage = static_cast<const Stage*>(self);
    if (fluid_midi_event_get_type(event) == kProgramChange)
        stage->Seat(fluid_midi_event_get_channel(event));
    return fluid_synth_handle_midi_event(stage->synth, event);
}

void Stage::Seat(int string) const
{
    const int side = strings > 1 ? kOutermost * (strings + 1 - 2 * string) / (strings - 1) : 0;
    fluid_synth_cc(synth, string, kPan, kCentre + side);
    fluid_synth_cc(synth, string, kReverbSend, kRoom);
}

}  // namespace quillon
