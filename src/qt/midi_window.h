// frmBldMidi on the screen.

#pragma once

#include "midi/midi_form.h"
#include "qt/form_window.h"

#include <memory>

namespace Ui {
class frmBldMidi;
}

namespace quillon {

class MidiWindow : public FormWindow {
public:
    /// All three must outlive the window.
    MidiWindow(QWidget* mainWindow, MidiForm& midiForm, Runner& theRunner);
    ~MidiWindow() override;

protected:
    void ShowForm() override;
    bool Loaded() const override { return form.Loaded; }
    void Unload() override;

private:
    void ConnectBuilder();
    void ConnectPlayer();
    void Do(const QString& doing, const std::function<void()>& handler);
    void TakeTempo();
    void ShowBuilder();
    void ShowButtons();

    MidiForm& form;
    std::unique_ptr<Ui::frmBldMidi> ui;
};

}  // namespace quillon
