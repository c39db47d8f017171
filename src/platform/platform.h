// Everything that the core asks of the platform, in one place.

#pragma once

#include "platform/clipboard.h"
#include "platform/dialogs.h"
#include "platform/player.h"
#include "platform/printer.h"
#include "platform/settings.h"
#include "platform/system.h"

namespace quillon {

struct Platform {
    Dialogs& dialogs;
    Settings& settings;
    System& system;
    Printer& printer;
    Clipboard& clipboard;
    Player& player;
    MidiPorts& midiPorts;
};

}  // namespace quillon
