// frmMidiSetup: chooses a MIDI output device. The choice is stored and shown, but the tune is
// always played by the program's own synthesizer.

#pragma once

#include "platform/player.h"
#include "platform/settings.h"
#include "store/page_settings.h"

#include <string>
#include <vector>

namespace quillon {

class MidiSetup {
public:
    MidiSetup(PageSettings& pageSettings, Settings& theSettings, const MidiPorts& midiPorts)
        : page(pageSettings), settings(theSettings), ports(midiPorts)
    {
    }

    std::vector<std::string> ComboMidiOut;  // device names, the system's default device first
    int ComboMidiOutIndex = 0;
    bool Visible = false;

    void Show();
    void ComboMidiOutClick(int line) { ComboMidiOutIndex = line; }
    void cmdExit();

private:
    PageSettings& page;
    Settings& settings;
    const MidiPorts& ports;
};

}  // namespace quillon
