// What comes with the program to be read or opened: the manual and the example tunes.

#pragma once

#include <QString>

namespace quillon {

/// The manual's path, installed or built. "" if it has been left out.
QString ManualFile();

/// The folder of the example tunes, "" if they have been left out.
QString ExamplesFolder();

}  // namespace quillon
