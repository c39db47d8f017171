#include "qt/midi_setup_window.h"

#include "qt/text.h"
#include "ui_midi_setup.h"

namespace quillon {

MidiSetupWindow::MidiSetupWindow(QWidget* mainWindow, MidiSetup& midiSetup, Runner& theRunner)
    : FormWindow(mainWindow, theRunner), form(midiSetup), ui(std::make_unique<Ui::frmMidiSetup>())
{
    ui->setupUi(this);
    connect(ui->ComboMidiOut, &QComboBox::activated, this, [this](int line) {
        Handle("MIDI output device", [&] { form.ComboMidiOutClick(line); });
    });
    connect(ui->cmdExit, &QPushButton::clicked, this,
            [this] { Handle("Exit", [this] { form.cmdExit(); }); });
    ShowForm();
    Centre();
}

MidiSetupWindow::~MidiSetupWindow() = default;

void MidiSetupWindow::ShowForm()
{
    ui->ComboMidiOut->clear();
    for (const std::string& name : form.ComboMidiOut)
        ui->ComboMidiOut->addItem(ToUnicode(name));
    ui->ComboMidiOut->setCurrentIndex(form.ComboMidiOutIndex);
}

}  // namespace quillon
