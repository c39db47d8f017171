// The sound module's entries. Who calls one owns what it makes.

#include "qt/fluid_player.h"
#include "qt/midi_ports.h"

#define QUILLON_ENTRY extern "C" __attribute__((visibility("default")))

QUILLON_ENTRY quillon::Player* MakeQuillonPlayer()
{
    return new quillon::FluidPlayer;
}

QUILLON_ENTRY quillon::MidiPorts* MakeQuillonMidiPorts()
{
    return new quillon::RtMidiPorts;
}
