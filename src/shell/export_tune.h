// The tune in the window as a file of another form: pages, sound, or another program's.

#pragma once

#include "exchange/notices.h"
#include "platform/renderer.h"
#include "shell/main_win.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace quillon {

struct ExportForm {
    std::string Extension;
    std::string About;
    bool IsSound = false;  // made by Renderer::Sound of a MIDI file
};

/// In the order in which they are offered.
std::vector<ExportForm> ExportForms();

/// What cannot be exported; what() says why.
class CannotExport : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The bytes of one file, or of one for each page, as the tune is and sounds now; of a form that is
/// sound, the MIDI file to be played. The tune and the pages in the window stay as they are. A tune
/// that cannot be performed is a Fault or a NeverEnding. `paper` is that of a PDF.
std::vector<std::string> ExportedFiles(const MainWin& win, const ExportForm& form,
                                       const PageChoices& paper, const Renderer& renderer,
                                       Notices& said);

}  // namespace quillon
