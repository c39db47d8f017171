// What the system around the program offers: folders, fonts, the end of the run, the other forms.

#pragma once

#include <string>

namespace quillon {

/// The forms that the main form opens. None of them blocks it.
enum class Form {
    Splash,
    frmAbout,
    frmPgSetup,
    frmBldMidi,
    frmMidiSetup,
    FrmCopyBox,
    Guitar,
    banjo,
    bass,
};

class System {
public:
    virtual ~System() = default;

    /// The program's own folder, without a separator at its end.
    virtual std::string ProgramFolder() const = 0;

    /// Whether a font of this name can be selected.
    virtual bool HasFont(const std::string& name) const = 0;

    virtual void Show(Form form) = 0;

    /// Closes the main form and ends the run, without further questions.
    virtual void End() = 0;

    /// Shows or hides the busy pointer.
    virtual void SetWaitCursor(bool on) = 0;
};

}  // namespace quillon
