// frmBldMidi, the MIDI playback unit: tuning, instrument, tempo and capo, the file that is built
// from the tune, and the player for it.
//
// The form as a value with its handlers, without a toolkit. Whoever shows it copies `controls` to
// the screen after each event, and after OnChange.

#pragma once

#include "midi/sound_settings.h"
#include "platform/platform.h"

#include <functional>

namespace quillon {

constexpr int kMidiFile = 0;  // FType: a file next to the tune, for the user to keep
constexpr int kPlayFile = 1;  // FType: a scratch file in the program's own folder

/// The controls as they are when the form is made. Each is what the control of that name shows.
struct MidiControls {
    std::vector<std::string> Combo1;  // names of the tunings
    int Combo1Index = -1;             // selected line, -1 is none
    int Combo2Index = -1;             // its lines are InstrumentNames()
    int HSlider1 = kLowestTempo;      // 30..300
    std::string Text1 = "0";          // the tempo as text
    int Capo = 0;                     // 0..12
    std::string lblCapo;
    int FType = kPlayFile;
    std::string txtFile;
    std::string cmdCreateCaption = "Create Play File";
    bool cmdCreateEnabled = true;
    bool cmdClearEnabled = true;
    bool cmdPlayEnabled = true;
    bool cmdStopEnabled = true;
    bool chkLoopEnabled = true;
    bool chkLoop = false;
    int sldTempo = 10;    // 0..30, tenths of the file's own tempo
    int sldVolume = 200;  // -2500..200, hundredths of a decibel
};

class MidiForm {
public:
    enum class Button { None, cmdPlay, cmdStop };

    /// All three must outlive the form.
    MidiForm(Tune& theTune, Tunings& theTunings, const Platform& thePlatform)
        : tune(theTune), tunings(theTunings), platform(thePlatform)
    {
    }

    static constexpr int kTop = 200;  // twips; across the screen the form is centred

    MidiControls controls;
    bool Loaded = false;  // whether the form is on the screen

    /// Button that an event gives the focus to. Whoever shows the form moves the focus there and
    /// sets this back to None.
    Button Focus = Button::None;

    /// Called when controls have changed without an event of the form's own, or must be seen before
    /// the event has ended.
    std::function<void()> OnChange;

    /// Opens the form, unless it is open. If sound does not work, a box says so, and
    /// the program ends.
    void Show();
    void Unload();

    void Combo1Click(int row);
    void Combo2Click(int program) { controls.Combo2Index = program; }
    void HSlider1Change(int tempo);

    /// The user has finished typing in Text1. The slider takes the number, as far as it can.
    void Text1Change(const std::string& text);
    void CapoChange(int capo);
    void FTypeClick(int index);
    void chkLoopClick(bool checked) { controls.chkLoop = checked; }
    void sldTempoChange(int value);
    void sldVolumeChange(int value);

    void cmdCreate();
    void cmdClear();
    void cmdPlay();
    void cmdStop();
    void cmdExit() { Unload(); }

    /// What a file would be built with: as the form stands or, while it is not open, as it would
    /// open.
    Sound SoundNow() const;
    int TempoNow() const;  // of it

    /// Whether the player is playing the file, or stands still in it.
    bool IsPlaying() const { return Loaded && controls.cmdStopEnabled; }

    /// Sets the player's buttons: true while it is at rest, false while it plays.
    void EnablePlayUI(bool fEnable);

private:
    void LoadTunings();
    int KeptTuning(int count) const;
    int KeptInstrument() const;
    int KeptTempo() const;
    double Setting(const char* key, int byDefault) const;
    std::string TuningPath() const;
    std::string Section() const;
    std::string FileToBuild() const;
    void CreateFile();
    void InitPlayer();
    void ClosePlayer();
    void TuneEnded();
    void NotificationFailed();
    void Changed() const;

    Tune& tune;
    Tunings& tunings;
    const Platform& platform;
    std::array<Int16, kStringSlots> OpenPitch;
    Int16 rememberedCurNote;  // the builder walks with CurNote
};

}  // namespace quillon
