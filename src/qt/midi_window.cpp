#include "qt/midi_window.h"

#include "qt/paint.h"
#include "qt/text.h"
#include "shell/steps.h"
#include "ui_midi.h"

#include <QSignalBlocker>

#include <utility>

namespace quillon {

namespace {

/// Moves the slider without sending an event.
void SetValue(QSlider* slider, int value)
{
    const QSignalBlocker quiet(slider);
    slider->setValue(value);
}

}  // namespace

MidiWindow::MidiWindow(QWidget* mainWindow, MidiForm& midiForm, Runner& theRunner)
    : FormWindow(mainWindow, theRunner, kTuningStep), form(midiForm),
      ui(std::make_unique<Ui::frmBldMidi>())
{
    ui->setupUi(this);
    ui->Text1->setFixedWidth(ui->Text1->fontMetrics().horizontalAdvance("0000000"));
    for (const std::string& name : form.controls.Combo1)
        ui->Combo1->addItem(ToUnicode(name));
    for (const char* name : InstrumentNames())
        ui->Combo2->addItem(name);
    ConnectBuilder();
    ConnectPlayer();
    form.OnChange = [this] { ShowForm(); };
    ShowForm();
    Centre(static_cast<int>(MidiForm::kTop / kScreenDot));
}

MidiWindow::~MidiWindow()
{
    ui->Text1->disconnect(this);  // it loses the focus on the way out
    form.OnChange = nullptr;
}

void MidiWindow::ConnectBuilder()
{
    connect(ui->Combo1, &QComboBox::activated, this,
            [this](int row) { Do("Tunings", [&] { form.Combo1Click(row); }); });
    connect(ui->Combo2, &QComboBox::activated, this,
            [this](int program) { Do("Sound", [&] { form.Combo2Click(program); }); });
    connect(ui->HSlider1, &QSlider::valueChanged, this,
            [this](int tempo) { Do("Tempo", [&] { form.HSlider1Change(tempo); }); });
    connect(ui->Text1, &QLineEdit::editingFinished, this, [this] {
        if (ui->Text1->isModified())
            Do("Tempo", [] {});
    });
    connect(ui->Capo, &QSlider::valueChanged, this,
            [this](int fret) { Do("Capo", [&] { form.CapoChange(fret); }); });
    connect(ui->FType_0, &QRadioButton::clicked, this,
            [this] { Do("Build Type", [&] { form.FTypeClick(kMidiFile); }); });
    connect(ui->FType_1, &QRadioButton::clicked, this,
            [this] { Do("Build Type", [&] { form.FTypeClick(kPlayFile); }); });
    connect(ui->cmdCreate, &QPushButton::clicked, this,
            [this] { Do(ui->cmdCreate->text(), [&] { form.cmdCreate(); }); });
    connect(ui->cmdClear, &QPushButton::clicked, this,
            [this] { Do("Clear Midi", [&] { form.cmdClear(); }); });
    connect(ui->cmdExit, &QPushButton::clicked, this,
            [this] { Do("Exit", [&] { form.cmdExit(); }); });
}

void MidiWindow::ConnectPlayer()
{
    connect(ui->cmdPlay, &QPushButton::clicked, this,
            [this] { Do("Play", [&] { form.cmdPlay(); }); });
    connect(ui->cmdStop, &QPushButton::clicked, this,
            [this] { Do("Stop", [&] { form.cmdStop(); }); });
    connect(ui->chkLoop, &QCheckBox::clicked, this,
            [this](bool checked) { Do("Loop Audio", [&] { form.chkLoopClick(checked); }); });
    connect(ui->sldTempo, &QSlider::valueChanged, this,
            [this](int value) { Do("Tempo", [&] { form.sldTempoChange(value); }); });
    connect(ui->sldVolume, &QSlider::valueChanged, this,
            [this](int value) { Do("Master Volume", [&] { form.sldVolumeChange(value); }); });
}

/// A mnemonic takes no focus from Text1, so that what was typed there counts first.
void MidiWindow::Do(const QString& doing, const std::function<void()>& handler)
{
    Handle(doing, [&] {
        TakeTempo();
        handler();
    });
}

void MidiWindow::TakeTempo()
{
    if (!ui->Text1->isModified())
        return;
    ui->Text1->setModified(false);
    form.Text1Change(FromUnicode(ui->Text1->text()));
}

void MidiWindow::Unload()
{
    TakeTempo();
    form.Unload();
}

void MidiWindow::ShowForm()
{
    ShowBuilder();
    SetValue(ui->sldTempo, form.controls.sldTempo);
    SetValue(ui->sldVolume, form.controls.sldVolume);
    ui->chkLoop->setChecked(form.controls.chkLoop);
    ShowButtons();
}

void MidiWindow::ShowBuilder()
{
    const MidiControls& controls = form.controls;
    ui->Combo1->setCurrentIndex(controls.Combo1Index);
    ui->Combo2->setCurrentIndex(controls.Combo2Index);
    SetValue(ui->HSlider1, controls.HSlider1);
    if (!ui->Text1->isModified())  // the tune may end while the user is typing
        ui->Text1->setText(ToUnicode(controls.Text1));
    SetValue(ui->Capo, controls.Capo);
    ui->lblCapo->setText(ToUnicode(controls.lblCapo));
    ui->FType_0->setChecked(controls.FType == kMidiFile);
    ui->FType_1->setChecked(controls.FType == kPlayFile);
    ui->txtFile->setText(PathFromBytes(controls.txtFile));
    ui->cmdCreate->setText(ToUnicode(controls.cmdCreateCaption));
}

/// What gets the focus must be enabled before, and what loses it may be disabled only afterwards.
void MidiWindow::ShowButtons()
{
    const MidiControls& controls = form.controls;
    const std::pair<QWidget*, bool> enabled[] = {
        {ui->cmdCreate, controls.cmdCreateEnabled},
        {ui->cmdClear,  controls.cmdClearEnabled },
        {ui->cmdPlay,   controls.cmdPlayEnabled  },
        {ui->cmdStop,   controls.cmdStopEnabled  },
        {ui->chkLoop,   controls.chkLoopEnabled  },
    };
    for (const auto& [widget, on] : enabled)
        if (on)
            widget->setEnabled(true);
    const MidiForm::Button focus = std::exchange(form.Focus, MidiForm::Button::None);
    if (focus == MidiForm::Button::cmdPlay)
        ui->cmdPlay->setFocus();
    else if (focus == MidiForm::Button::cmdStop)
        ui->cmdStop->setFocus();
    for (const auto& [widget, on] : enabled)
        widget->setEnabled(on);
}

}  // namespace quillon
