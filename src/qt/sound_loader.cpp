#include "qt/sound_loader.h"

#include "qt/module.h"
#include "store/fault.h"

namespace quillon {

namespace {

template <typename Made> std::unique_ptr<Made> Make(const char* maker)
{
    return MadeByModule<Made>("libquillon-sound.so", maker);
}

}  // namespace

bool LoadedPlayer::Init()
{
    if (!player) {
        player = Make<Player>("MakeQuillonPlayer");
        if (!player)
            return false;
        player->OnEnd = [this] {
            if (OnEnd)
                OnEnd();
        };
        player->OnFailure = [this] {
            if (OnFailure)
                OnFailure();
        };
    }
    return player->Init();
}

std::string LoadedPlayer::Trouble() const
{
    return player ? player->Trouble() : "The sound module or one of its libraries is missing.";
}

void LoadedPlayer::Close()
{
    if (player)
        player->Close();
}

void LoadedPlayer::Load(const std::string& path)
{
    if (!player)
        throw Fault(Error::ObjectRequired);
    player->Load(path);
}

void LoadedPlayer::LoadBytes(const std::string& midi)
{
    if (!player)
        throw Fault(Error::ObjectRequired);
    player->LoadBytes(midi);
}

bool LoadedPlayer::HasTune() const
{
    return player && player->HasTune();
}

void LoadedPlayer::Play(bool forEver)
{
    if (player)
        player->Play(forEver);
}

void LoadedPlayer::Stop()
{
    if (player)
        player->Stop();
}

int LoadedPlayer::TickHeard() const
{
    return player ? player->TickHeard() : 0;
}

void LoadedPlayer::SetTempoFactor(double factor)
{
    if (player)
        player->SetTempoFactor(factor);
}

void LoadedPlayer::SetVolume(int hundredthsOfDecibel)
{
    if (player)
        player->SetVolume(hundredthsOfDecibel);
}

int LoadedMidiPorts::Count() const
{
    if (!ports)
        ports = Make<MidiPorts>("MakeQuillonMidiPorts");
    return ports ? ports->Count() : 0;
}

std::string LoadedMidiPorts::Name(int index) const
{
    if (!ports)
        Count();
    return ports ? ports->Name(index) : "Default device";  // the only one that is left to name
}

}  // namespace quillon
