#include "midi/midi_setup.h"

#include "store/numbers.h"

namespace quillon {

void MidiSetup::Show()
{
    if (Visible)
        return;
    Visible = true;
    ComboMidiOut.clear();
    const int count = ports.Count();
    for (int i = -1; i < count; ++i)
        ComboMidiOut.push_back(ports.Name(i));
    // If the device is gone, the default one is used.
    const double device = Val(page.MidiDevice);
    ComboMidiOutIndex = device >= -1 && device <= count - 1 ? Round(device) + 1 : 0;
}

void MidiSetup::cmdExit()
{
    Visible = false;
    page.MidiDevice = std::to_string(ComboMidiOutIndex - 1);
    settings.Set("Prefs", "MIDIDEVICE", page.MidiDevice);
}

}  // namespace quillon
