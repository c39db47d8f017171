#include "midi/midi_form.h"

#include "midi/midi_file_writer.h"
#include "midi/performance.h"

#include <filesystem>

namespace quillon {

namespace {

constexpr const char* kCreateCaptions[] = {"Create MIDI File", "Create Play File"};  // by FType

bool Exists(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

void Delete(const std::string& path)
{
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure) || !std::filesystem::remove(path, failure))
        throw Fault(Error::PathFileAccess, "The MIDI file that is there cannot be deleted.");
}

}  // namespace

void MidiForm::Show()
{
    if (Loaded)
        return;
    Loaded = true;
    controls = {};
    Focus = Button::None;
    rememberedCurNote = tune.CurNote;
    controls.cmdClearEnabled = false;
    controls.cmdStopEnabled = false;
    controls.Combo2Index = KeptInstrument();
    HSlider1Change(KeptTempo());
    controls.lblCapo = std::to_string(controls.Capo);
    LoadTunings();
    InitPlayer();
}

void MidiForm::LoadTunings()
{
    const int count = quillon::LoadTunings(TuningPath(), tune.NumStrings, tunings);
    for (int i = 0; i < count; ++i)
        controls.Combo1.push_back(tunings[i].TuningName);
    Combo1Click(KeptTuning(count));
}

int MidiForm::KeptTuning(int count) const
{
    std::string wanted = tune[0].Slot(4);
    if (wanted.empty())
        wanted = platform.settings.Get(Section(), "Tuning", "0");
    if (count == 0)
        throw Fault(Error::InvalidPropertyValue);  // there is no line to select
    return TuningRow(wanted, count);
}

int MidiForm::KeptInstrument() const
{
    const int program = Round(Setting("Instrument", FindMode(tune.NumStrings)->Instrument));
    if (program < -1 || program >= static_cast<int>(InstrumentNames().size()))
        throw Fault(Error::InvalidPropertyValue);
    return program;
}

int MidiForm::KeptTempo() const
{
    return HeldTempo(Setting("Tempo", FindMode(tune.NumStrings)->Tempo));
}

double MidiForm::Setting(const char* key, int byDefault) const
{
    return Val(platform.settings.Get(Section(), key, std::to_string(byDefault)));
}

std::string MidiForm::TuningPath() const
{
    return platform.system.ProgramFolder() + "/" + FindMode(tune.NumStrings)->TuningFile;
}

Sound MidiForm::SoundNow() const
{
    Sound sound;
    sound.Tempo = TempoNow();
    if (Loaded) {
        sound.Instrument = controls.Combo2Index;
        sound.OpenPitch = OpenPitch;
        return sound;
    }
    Tunings rows;
    const int count = quillon::LoadTunings(TuningPath(), tune.NumStrings, rows);
    sound.Instrument = KeptInstrument();
    sound.OpenPitch = OpenPitches(rows[KeptTuning(count)], 0);
    return sound;
}

int MidiForm::TempoNow() const
{
    return Loaded ? controls.HSlider1 : KeptTempo();
}

void MidiForm::Unload()
{
    if (!Loaded)
        return;
    Loaded = false;
    ClosePlayer();
    tune.CurNote = rememberedCurNote;
    platform.system.SetWaitCursor(false);  // a build that failed has left it on
    // Four strings keep their tuning, but neither instrument nor tempo.
    if (tune.NumStrings == 6 || tune.NumStrings == 5) {
        platform.settings.Set(Section(), "Instrument", std::to_string(controls.Combo2Index));
        platform.settings.Set(Section(), "Tempo", std::to_string(controls.HSlider1));
    }
}

std::string MidiForm::Section() const
{
    return FindMode(tune.NumStrings)->SettingsSection;
}

void MidiForm::Combo1Click(int row)
{
    controls.Combo1Index = row;
    OpenPitch = OpenPitches(tunings[row], controls.Capo);
    platform.settings.Set(Section(), "Tuning", std::to_string(row));
    KeepTuning(tune, row);
}

void MidiForm::HSlider1Change(int tempo)
{
    controls.HSlider1 = HeldTempo(tempo);
    controls.Text1 = std::to_string(controls.HSlider1);
}

void MidiForm::Text1Change(const std::string& text)
{
    HSlider1Change(HeldTempo(Val(text)));
}

void MidiForm::CapoChange(int capo)
{
    controls.Capo = HeldCapo(capo);
    OpenPitch = OpenPitches(tunings[controls.Combo1Index], controls.Capo);
    controls.lblCapo = std::to_string(controls.Capo);
}

void MidiForm::FTypeClick(int index)
{
    controls.FType = index;
    controls.cmdCreateCaption = kCreateCaptions[index];
}

void MidiForm::cmdCreate()
{
    const auto report = [&](const std::string& text) {
        platform.dialogs.Message(Icon::Stop, "Run-time error", text);
    };
    try {
        CreateFile();
    } catch (const Fault& fault) {
        std::string text = fault.what();
        text.front() = 'R';
        if (!fault.Explanation().empty())
            text += "\r\n" + fault.Explanation();
        report(text);
    } catch (const NeverEnding& failure) {
        report(failure.what());
    }
}

void MidiForm::CreateFile()
{
    const std::string path = FileToBuild();
    if (Exists(path)) {
        const bool scratch = controls.FType == kPlayFile;
        if (!scratch &&
            !platform.dialogs.Ask("", path + " already exists, do you want to recreate it?"))
            return;
        Delete(path);
    }
    controls.txtFile = path;
    Changed();  // if the build fails, the name is visible behind the message box
    const Sound sound = SoundNow();
    platform.system.SetWaitCursor(true);
    MidiFileWriter writer;
    writer.FileName = path;
    BuildMidiFile(tune, sound, writer);
    writer.CloseFile();
    platform.system.SetWaitCursor(false);
    EnablePlayUI(true);
    platform.player.Load(controls.txtFile);
    controls.cmdCreateEnabled = false;
    controls.cmdClearEnabled = true;
}

std::string MidiForm::FileToBuild() const
{
    if (controls.FType == kPlayFile)
        return platform.system.ProgramFolder() + "/Playfile.mid";
    if (tune.FileName.size() < 3)
        throw Fault(Error::InvalidProcedureCall, "The tune has no file name.");
    return tune.FileName.substr(0, tune.FileName.size() - 3) + "Mid";
}

void MidiForm::cmdClear()
{
    cmdStop();
    ClosePlayer();
    controls.cmdCreateEnabled = true;
    controls.cmdClearEnabled = false;
    InitPlayer();
}

void MidiForm::InitPlayer()
{
    if (platform.player.Init()) {
        platform.player.OnEnd = [this] { TuneEnded(); };
        platform.player.OnFailure = [this] { NotificationFailed(); };
        return;
    }
    platform.dialogs.Message(Icon::Information, "Exiting...",
                             "Could not initialize DirectMusic.\r\nThis sample will exit.");
    ClosePlayer();
    Unload();
    platform.system.End();
}

void MidiForm::ClosePlayer()
{
    platform.player.OnEnd = nullptr;
    platform.player.OnFailure = nullptr;
    platform.player.Close();
}

void MidiForm::TuneEnded()
{
    EnablePlayUI(true);
    Changed();
}

void MidiForm::NotificationFailed()
{
    platform.dialogs.Message(Icon::Information, "Cannot Process.",
                             "Error processing this Notification");
    Changed();
}

void MidiForm::Changed() const
{
    if (OnChange)
        OnChange();
}

void MidiForm::cmdPlay()
{
    if (!platform.player.HasTune())
        return;
    platform.player.Play(controls.chkLoop);
    EnablePlayUI(false);
}

void MidiForm::cmdStop()
{
    if (platform.player.HasTune())
        platform.player.Stop();
    EnablePlayUI(true);
}

void MidiForm::EnablePlayUI(bool fEnable)
{
    controls.chkLoopEnabled = fEnable;
    controls.cmdStopEnabled = !fEnable;
    controls.cmdPlayEnabled = fEnable;
    Focus = fEnable ? Button::cmdPlay : Button::cmdStop;
}

void MidiForm::sldTempoChange(int value)
{
    controls.sldTempo = value;
    platform.player.SetTempoFactor(value / 10.0);
}

void MidiForm::sldVolumeChange(int value)
{
    controls.sldVolume = value;
    platform.player.SetVolume(value);
}

}  // namespace quillon
