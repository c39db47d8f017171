// The tune state and the editing state as a line of text.

#pragma once

#include "editor/main_form.h"
#include "notation/measure_view.h"
#include "store/tune.h"

#include <sstream>
#include <string>

namespace quillon {

/// For "nothing has changed".
inline std::string StateText(const Tune& tune, const MainForm& form, const MeasureView& view)
{
    std::ostringstream text;
    for (int value : {int{tune.NumStrings},
                      int{tune.LastNote},
                      int{tune.LastMeas},
                      int{tune.CurNote},
                      int{tune.CurMeas},
                      int{form.MeasHead},
                      int{form.MeasEnd},
                      int{form.CursorX},
                      int{form.CursorY},
                      int{form.SavedCursorY},
                      int{form.CurBeats},
                      int{form.CurBeatUnit},
                      int{form.CurValue},
                      int{form.MeasCapacity},
                      int{form.MeasFill},
                      int(form.EntryState),
                      int(form.InputMode),
                      int{form.CaretOn},
                      int(form.Saved),
                      form.Toolbar1,
                      static_cast<int>(form.Focus),
                      static_cast<int>(form.Timer1Enabled),
                      static_cast<int>(form.cmdRefreshEnabled)})
        text << value << ' ';
    text << tune.FileName << '|' << form.cmdNextCaption << '|' << form.cmdPreviousCaption << '|'
         << view.lblMeasNum << '|' << view.lblLastNote << '|' << view.hdbkbox;
    return text.str();
}

}  // namespace quillon
