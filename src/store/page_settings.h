// How pages are set: fonts, margins and spacing, for every tune of the run.
//
// The values come from the user's settings at start-up; a tune's header overrides the fonts.

#pragma once

#include <string>

namespace quillon {

inline constexpr const char* kPrefs = "Prefs";  // their settings section

struct PageSettings {
    std::string BodyFontName = "Arial";
    float BodyFontSize = 10;  // points
    std::string TitleFontName = "Arial";
    float TitleFontSize = 20;  // points
    float PageLeft = 1;        // margins, inches
    float PageRight = 1;
    float PageTop = 1;
    float StaveSpace = .75F;  // gap between staves, inches
    bool TitleCentered = true;
    std::string MidiDevice = "-1";       // index of the output device as text
    std::string FormFontName = "Arial";  // the main form's own font, which measures some texts
};

}  // namespace quillon
