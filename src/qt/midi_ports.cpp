#include "qt/midi_ports.h"

#include "qt/text.h"

#include <RtMidi.h>

namespace quillon {

int RtMidiPorts::Count() const
{
    names.clear();
    try {
        RtMidiOut output(RtMidi::LINUX_ALSA, "Quillon");
        for (unsigned i = 0; i < output.getPortCount(); ++i)
            names.push_back(FromUnicode(QString::fromStdString(output.getPortName(i))));
    } catch (const RtMidiError&) {
        // no sequencer
    }
    return static_cast<int>(names.size());
}

std::string RtMidiPorts::Name(int index) const
{
    return index == -1 ? "Default device" : names.at(static_cast<std::size_t>(index));
}

}  // namespace quillon
