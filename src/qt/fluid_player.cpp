#include "qt/fluid_player.h"

#include "store/item_file.h"

#include <QMetaObject>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace quillon {

namespace {

constexpr double kBaseGain = 0.5;  // six tracks at full velocity stay well below clipping

std::string Environment(const char* name)
{
    return qEnvironmentVariable(name).toLocal8Bit().toStdString();
}

/// The path of a General MIDI SoundFont, "" if there is none.
std::string FindSoundFont()
{
    const std::string named = Environment("QUILLON_SOUNDFONT");
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

FluidPtr<fluid_settings_t> MakeSettings()
{
    for (const int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG})
        fluid_set_log_function(level, nullptr, nullptr);
    FluidPtr<fluid_settings_t> settings(new_fluid_settings());
    fluid_settings_setint(settings.get(), "synth.lock-memory", 0);
    fluid_settings_setnum(settings.get(), "synth.gain", kBaseGain);
    return settings;
}

/// Null without a SoundFont.
FluidPtr<fluid_synth_t> MakeSynth(fluid_settings_t* settings)
{
    FluidPtr<fluid_synth_t> synth(new_fluid_synth(settings));
    const std::string soundFont = FindSoundFont();
    if (!synth || soundFont.empty() ||
        fluid_synth_sfload(synth.get(), soundFont.c_str(), true) == FLUID_FAILED)
        return nullptr;
    return synth;
}

/// Takes a copy: the callback may reset the original.
void Tell(std::function<void()> listener)
{
    if (listener)
        listener();
}

bool IsMidiFile(const std::string& bytes)
{
    return bytes.starts_with("MThd");
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
    settings = MakeSettings();
    synth = MakeSynth(settings.get());
    if (synth && OpenDriver())
        return true;
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
    const std::string midi = ReadFileBytes(path);
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

void RenderWav(const std::string& midiBytes, const std::string& wavPath,
               const std::function<void(double)>& progress)
{
    if (!IsMidiFile(midiBytes))
        throw std::runtime_error("The file is not a MIDI file.");
    const FluidPtr<fluid_settings_t> settings = MakeSettings();
    fluid_settings_setstr(settings.get(), "player.timing-source", "sample");
    fluid_settings_setstr(settings.get(), "audio.file.name", wavPath.c_str());
    fluid_settings_setstr(settings.get(), "audio.file.type", "wav");
    fluid_settings_setstr(settings.get(), "audio.file.format", "s16");
    fluid_settings_setint(settings.get(), "audio.period-size", 64);
    const FluidPtr<fluid_synth_t> synth = MakeSynth(settings.get());
    if (!synth)
        throw std::runtime_error("No SoundFont was found.");
    const FluidPtr<fluid_player_t> player(new_fluid_player(synth.get()));
    fluid_player_add_mem(player.get(), midiBytes.data(), midiBytes.size());

    bool written = false;
    std::error_code failure;
    {
        const FluidPtr<fluid_file_renderer_t> renderer(new_fluid_file_renderer(synth.get()));
        written = renderer && fluid_player_play(player.get()) == FLUID_OK;
        int told = -1;  // percent
        while (written && fluid_player_get_status(player.get()) == FLUID_PLAYER_PLAYING) {
            written = fluid_file_renderer_process_block(renderer.get()) == FLUID_OK;
            const int total = fluid_player_get_total_ticks(player.get());
            const int done = std::min(fluid_player_get_current_tick(player.get()), total);
            const int percent = total > 0 ? static_cast<int>(100.0 * done / total) : 0;
            if (progress && percent != std::exchange(told, percent))
                progress(percent / 100.0);
        }
        if (!written)
            failure = {errno, std::generic_category()};
    }
    if (!written)
        throw std::system_error(failure, "The sound file cannot be written");
}

}  // namespace quillon
