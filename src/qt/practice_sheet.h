// The sheet beside the window for practising a part of the tune: slowly, in a loop, with clicks.
//
// What was chosen is remembered for each tune until the program ends.

#pragma once

#include "qt/hearing.h"

#include <QDialog>

#include <map>
#include <optional>
#include <string>

class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace quillon {

class PracticeSheet : public QDialog {
    Q_OBJECT

public:
    /// Both must outlive the sheet.
    PracticeSheet(const MainWin& mainWin, Hearing& theHearing, QWidget* mainWindow);

    /// Shows what was chosen for this tune, at first the measure in view and the next.
    void ShowUp();

protected:
    bool event(QEvent* event) override;
    void reject() override;

private:
    QSpinBox* AddNumber(const char* name, const QString& caption, int least, int most,
                        const QString& hint);
    QCheckBox* AddCheck(const char* name, const QString& caption, const QString& hint);
    void AddButtons();
    void MoveToCorner();
    void StartOrStop();
    void ShowTune();
    void Show(const PartToPlay& part);
    PartToPlay Choices() const;
    PartToPlay FirstChoices() const;
    void ShowState();

    const MainWin& win;
    Hearing& hearing;
    std::map<std::string, PartToPlay> remembered;  // by the tune's file name
    std::optional<std::string> shownTune;
    QSpinBox* from;
    QSpinBox* to;
    QSpinBox* speed;
    QCheckBox* loop;
    QSpinBox* stepUp;
    QSpinBox* goal;
    QCheckBox* countIn;
    QCheckBox* click;
    QLabel* trouble;
    QPushButton* start;
};

}  // namespace quillon
