// The command line of quillon-export.

#pragma once

#include "headless/export.h"
#include "notation/look.h"

#include <optional>
#include <string>
#include <vector>

namespace quillon {

struct PaperSize {
    double Width;  // twips
    double Height;
};

inline constexpr PaperSize kLetter{kPageWidth, kPageHeight};
inline constexpr PaperSize kA4{11906, 16838};

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
    std::optional<PaperSize> Paper;  // of a PDF; else the locale's
    double Dpi = 300;                // of a PNG
    bool KeepText = false;           // in an SVG
    bool NoEmptyPage = false;        // at the end of a PDF
    bool Crop = false;
    std::optional<MeasureRange> Measures;
    int Speed = 100;  // of sound, per cent
    int Turns = 1;    // of it
    bool CountIn = false;
    bool Click = false;

    PracticeChoices Practice() const
    {
        return {.Speed = Speed, .Turns = Turns, .CountIn = CountIn, .Click = Click};
    }
};

/// Reads the arguments after the program's name. Bad usage: a std::invalid_argument whose what()
/// says why.
ExportCommand ParseExportCommand(const std::vector<std::string>& arguments);

/// What --help prints.
extern const char* const kExportHelp;

}  // namespace quillon
