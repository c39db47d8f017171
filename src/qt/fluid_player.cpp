#include "qt/fluid_player.h"

#include "store/item_file.h"

#include <QMetaObject>

#include <cmath>
#include <new>
#include <utility>
#include <vector>

namespace quillon {

namespace {

/// Six strings of a guitar at full velocity stay below full scale, also at the highest volume.
constexpr double kBaseGain = 0.8;

/// Takes a copy: the callback may reset the original.
void Tell(std::function<void()> listener)  // NOLINT(performance-unnecessary-value-param)
{
    if (listener)
        listener();
}

constexpr std::size_t kDivisionAt = 12;  // in a MIDI file, two bytes

int TicksPerQuarter(const std::string& midi)
{
    if (midi.size() < kDivisionAt + 2)
        return 0;
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(midi[at]); };
    return byte(kDivisionAt) * 256 + byte(kDivisionAt + 1);
}

}  // namespace

FluidPlayer::FluidPlayer(std::chrono::milliseconds silence)
{
    listening.setInterval(silence);
    QObject::connect(&listening, &QTimer::timeout, [this] { Listen(); });
}

bool FluidPlayer::Init()
{
    Close();
    settings = MakeSettings(kBaseGain);
    synth = MakeSynth(settings.get());
    if (synth && OpenDriver())
        return true;
    trouble = synth                     ? "No sound device can be opened."
              : FindSoundFont().empty() ? "No SoundFont is installed."
                                        : "The SoundFont cannot be read.";
    Close();
    return false;
}

bool FluidPlayer::OpenDriver()
{
    const std::string named = Environment("QUILLON_AUDIO_DRIVER");
    const std::string file = Environment("QUILLON_AUDIO_FILE");
    if (!file.empty())
        fluid_settings_setstr(settings.get(), "audio.file.name", file.c_str());
    // Jack is not tried unasked: without a server it takes seconds to fail.
    for (const std::string& name :
         named.empty() ? std::vector<std::string>{"pulseaudio", "alsa"} : std::vector{named}) {
        fluid_settings_setstr(settings.get(), "audio.driver", name.c_str());
        driver.reset(new_fluid_audio_driver(settings.get(), synth.get()));
        if (driver)
            return true;
    }
    return false;
}

void FluidPlayer::Close()
{
    Stop();
    tempoFactor = 1;
    driver.reset();
    player.reset();
    synth.reset();
    settings.reset();
}

void FluidPlayer::Load(const std::string& path)
{
    LoadBytes(ReadFileBytes(path));
}

void FluidPlayer::LoadBytes(const std::string& midi)
{
    if (!IsMidiFile(midi))
        throw Fault(Error::PathFileAccess, "The file is not a MIDI file.");
    Stop();
    // The list of players has no lock: making or deleting one under a running driver crashes.
    driver.reset();
    player.reset();
    fluid_synth_system_reset(synth.get());
    player.reset(new_fluid_player(synth.get()));
    if (!player)
        throw std::bad_alloc();
    fluid_player_add_mem(player.get(), midi.data(), midi.size());
    stage = Stage(synth.get(), TimedEventsOf(midi));
    stage.Follow(player.get());
    ticksPerQuarter = TicksPerQuarter(midi);
    fluid_player_set_tick_callback(player.get(), &FluidPlayer::OnTick, this);
    OpenDriver();
}

void FluidPlayer::Play(bool forEver)
{
    if (!player)
        return;
    if (std::exchange(silent, false))
        driver.reset();
    if (!driver && !OpenDriver()) {
        // Nothing would ever call the player, and the tune would never end.
        QMetaObject::invokeMethod(
            &receiver, [this] { Tell(OnFailure); }, Qt::QueuedConnection);
        return;
    }
    fluid_player_seek(player.get(), 0);
    fluid_player_set_loop(player.get(), forEver ? -1 : 1);
    ++plays;
    watchedPlay = forEver ? 0 : plays;
    playing = true;
    SetTempoFactor(tempoFactor);
}

void FluidPlayer::Stop()
{
    watchedPlay = 0;
    playing = false;
    listening.stop();
    if (player)
        fluid_player_stop(player.get());
}

int FluidPlayer::TickHeard() const
{
    if (!player)
        return 0;
    const double quarterSeconds = fluid_player_get_midi_tempo(player.get()) / 1e6;
    const double ahead = BufferedSeconds() / quarterSeconds * ticksPerQuarter;
    return std::max(0, fluid_player_get_current_tick(player.get()) - static_cast<int>(ahead));
}

/// How long after it has been made sound is heard. A sound server adds a little, which nobody
/// tells; a sound file is judged by what is in it.
double FluidPlayer::BufferedSeconds() const
{
    char* driverName = nullptr;
    fluid_settings_dupstr(settings.get(), "audio.driver", &driverName);
    const bool intoFile = driverName && std::string_view(driverName) == "file";
    fluid_free(driverName);
    if (intoFile)
        return 0;
    int periods = 0;
    int periodSize = 0;
    double rate = 1;
    fluid_settings_getint(settings.get(), "audio.periods", &periods);
    fluid_settings_getint(settings.get(), "audio.period-size", &periodSize);
    fluid_settings_getnum(settings.get(), "synth.sample-rate", &rate);
    return periods * periodSize / rate;
}

void FluidPlayer::SetTempoFactor(double factor)
{
    tempoFactor = factor;
    if (!playing)
        return;
    listening.stop();
    if (factor <= 0) {
        fluid_player_stop(player.get());  // keeps its place, and goes on from there
        return;
    }
    fluid_player_set_tempo(player.get(), FLUID_PLAYER_TEMPO_INTERNAL, factor);
    if (fluid_player_get_status(player.get()) != FLUID_PLAYER_PLAYING)
        fluid_player_play(player.get());
    heard = false;
    listening.start();
}

void FluidPlayer::SetVolume(int hundredthsOfDecibel)
{
    if (synth)
        fluid_synth_set_gain(
            synth.get(),
            static_cast<float>(kBaseGain * std::pow(10, hundredthsOfDecibel / 2000.0)));
}

/// In the sound thread. The status would turn only when the last notes have died away.
int FluidPlayer::OnTick(void* self, int tick)
{
    auto* it = static_cast<FluidPlayer*>(self);
    it->heard = true;
    if (tick >= fluid_player_get_total_ticks(it->player.get()))
        if (const int ended = it->watchedPlay.exchange(0))
            QMetaObject::invokeMethod(
                &it->receiver, [it, ended] { it->Ended(ended); }, Qt::QueuedConnection);
    return FLUID_OK;
}

void FluidPlayer::Listen()
{
    if (heard.exchange(false))
        return;
    listening.stop();  // once for each play
    silent = true;
    Tell(OnFailure);
}

void FluidPlayer::Ended(int playNumber)
{
    if (!playing || playNumber != plays)
        return;  // the user was quicker
    Stop();
    Tell(OnEnd);
}

}  // namespace quillon
