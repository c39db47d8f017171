// The tuning forms Guitar, banjo and bass on the screen.

#pragma once

#include "midi/tuning_form.h"
#include "qt/form_window.h"

#include <memory>
#include <vector>

class QLineEdit;
namespace Ui {
class Tuning;
}

namespace quillon {

/// The start of a neck, seen as in tablature: each string leads to its box beside the
/// picture. A banjo's short string begins at its peg.
class NeckPicture : public QWidget {
public:
    using QWidget::QWidget;

    /// The boxes of the strings, string 1 first. They have the picture's parent.
    void SetBoxes(const std::vector<QLineEdit*>& theBoxes) { boxes = theBoxes; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool HasShortString() const;  // only a banjo has one
    int StringY(std::size_t string) const;
    void PaintNeck(QPainter& painter, const QRect& neck) const;
    void PaintString(QPainter& painter, const QRect& neck, std::size_t string) const;

    std::vector<QLineEdit*> boxes;
};

class TuningWindow : public FormWindow {
public:
    /// All three must outlive the window.
    TuningWindow(QWidget* mainWindow, TuningForm& tuningForm, Runner& theRunner);
    ~TuningWindow() override;

protected:
    void ShowForm() override;
    bool Loaded() const override { return form.Loaded; }
    void Unload() override { form.cmdExit(); }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void AddTextBoxes();
    void ConnectControls();
    void ShowNames();

    TuningForm& form;
    std::unique_ptr<Ui::Tuning> ui;
    std::vector<QLineEdit*> Text1;  // string 1 first
};

}  // namespace quillon
