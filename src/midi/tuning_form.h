// The tuning forms Guitar, banjo and bass: they edit the list of tunings of their instrument.
//
// One form as a value with its handlers, without a toolkit; what differs is in a table. A form
// reads its file when it opens, and only cmdSave writes it.

#pragma once

#include "platform/system.h"
#include "store/tunings.h"

#include <string>
#include <vector>

namespace quillon {

struct TuningFormDesign {
    int NumStrings;  // also the number of Text1 boxes
    Form Name;
    const char* ObjectName;
    const char* Caption;
    bool HasDefault;       // whether there is a button cmdDefault
    bool EnterInTextAdds;  // Enter in a Text1 box runs cmdAdd
    bool EnterInTitleGoesToSave;
};

inline constexpr TuningFormDesign kTuningForms[] = {
    {6, Form::Guitar, "Guitar", "Tuning for 6 String Instrument", false, true,  true },
    {5, Form::banjo,  "banjo",  "Tuning for 5 String Instrument", true,  false, false},
    {4, Form::bass,   "bass",   "Tuning for 4 String Instrument", true,  false, false},
};

class TuningForm {
public:
    /// All three must outlive the form.
    TuningForm(const TuningFormDesign& theDesign, Tunings& theTunings, const System& theSystem);

    const TuningFormDesign& design;

    // Controls
    std::vector<std::string> Combo1;  // names
    int Combo1Index = -1;             // selected line, -1 is none
    std::vector<std::string> Text1;   // pitches, string 1 first
    std::string AddTitle;
    bool cmdSaveFocused = false;  // the last event gave cmdSave the focus
    bool Loaded = false;          // whether the form is on the screen

    /// Opens the form, unless it is open.
    void Show();
    void Combo1Click(int row);
    void cmdAdd();
    void cmdDelete();
    void cmdDefault();
    void cmdSave();
    void cmdExit() { Loaded = false; }

    /// Enter in a Text1 box, and in AddTitle.
    void Text1Enter();
    void AddTitleEnter();

private:
    int Count() const { return static_cast<int>(Combo1.size()); }
    std::string TuningFile() const;
    void ShowPitches(int row);
    void Activate(int row);

    Tunings& tunings;
    const System& system;
};

}  // namespace quillon
