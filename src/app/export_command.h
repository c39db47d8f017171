// The command line of quillon-export.

#pragma once

#include "headless/export.h"
#include "notation/look.h"

#include <string>
#include <vector>

namespace quillon {

struct ExportCommand {
    ExportOptions Options;
    std::vector<std::string> Tunes;
    std::string Output;  // a file, "-" for standard output, or a folder for several tunes
    std::string Format;  // "" until told by the output's extension
    std::string From;    // form of the tunes; "": told by their extension
    int LowestFret = 0;  // for notes that come without a fret
    int HighestFret = 24;
    bool Check = false;  // list the problems of the tunes; Output and Format are ""
    bool Order = false;  // print the order in which they are played, likewise
    bool Help = false;
    Look As = Look::Engraved;
};

/// Reads the arguments after the program's name. Bad usage: a std::invalid_argument whose what()
/// says why.
ExportCommand ParseExportCommand(const std::vector<std::string>& arguments);

/// What --help prints.
extern const char* const kExportHelp;

}  // namespace quillon
