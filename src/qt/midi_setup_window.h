// frmMidiSetup on the screen.

#pragma once

#include "midi/midi_setup.h"
#include "qt/form_window.h"

#include <memory>

namespace Ui {
class frmMidiSetup;
}

namespace quillon {

class MidiSetupWindow : public FormWindow {
public:
    /// All three must outlive the window.
    MidiSetupWindow(QWidget* mainWindow, MidiSetup& midiSetup, Runner& theRunner);
    ~MidiSetupWindow() override;

protected:
    void ShowForm() override;
    bool Loaded() const override { return form.Visible; }

    /// Closed by the system, it keeps no choice.
    void Unload() override { form.Visible = false; }

private:
    MidiSetup& form;
    std::unique_ptr<Ui::frmMidiSetup> ui;
};

}  // namespace quillon
