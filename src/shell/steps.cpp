#include "shell/steps.h"

namespace quillon {

Values ValuesOf(MainWin& win)
{
    MeasureView& view = win.view;
    return {win.tune,         win.form,     view.StaffBox, view.EndBarX,         view.lblMeasNum,
            view.lblLastNote, view.hdbkbox, win.page,      win.tunings.CurTuning};
}

std::string StepName(const MenuEntry& entry)
{
    std::string name = entry.Caption;
    std::erase(name, '&');
    return name;
}

std::string StepName(Control button, const MainForm& form)
{
    const bool inserting = form.InputMode == InputMode::Insert;
    switch (button) {
    case Control::cmdNext:
        return inserting ? "Insert Measure" : "New Measure";
    case Control::cmdPrevious:
        return inserting ? "Cancel Measure" : "Previous Measure";
    case Control::cmdRest:
        return "Rest";
    default:
        return "Refresh";
    }
}

}  // namespace quillon
