#include "midi/tuning_form.h"

namespace quillon {

namespace {

constexpr const char* kUntouchedTitle = " ";  // adds nothing

}  // namespace

TuningForm::TuningForm(const TuningFormDesign& theDesign, Tunings& theTunings,
                       const System& theSystem)
    : design(theDesign), tunings(theTunings), system(theSystem)
{
}

std::string TuningForm::TuningFile() const
{
    return system.ProgramFolder() + "/" + FindMode(design.NumStrings)->TuningFile;
}

void TuningForm::Show()
{
    if (Loaded)
        return;
    Loaded = true;
    cmdSaveFocused = false;
    AddTitle = kUntouchedTitle;
    Combo1.clear();
    const int count = LoadTunings(TuningFile(), design.NumStrings, tunings);
    for (int i = 0; i < count; ++i)
        Combo1.push_back(tunings[i].TuningName);
    // The file's first tuning, whichever is active.
    Combo1Index = count > 0 ? 0 : -1;
    ShowPitches(0);
}

void TuningForm::ShowPitches(int row)
{
    Text1.clear();
    for (int s = 1; s <= design.NumStrings; ++s)
        Text1.push_back(std::to_string(tunings[row].Pitch(s)));
}

void TuningForm::Activate(int row)
{
    for (int s = 1; s <= design.NumStrings; ++s)
        tunings.CurTuning.at(static_cast<std::size_t>(s - 1)) = tunings[row].Pitch(s);
}

void TuningForm::Combo1Click(int row)
{
    Combo1Index = row;
    ShowPitches(row);
    Activate(row);
}

void TuningForm::cmdAdd()
{
    if (!AddTitle.starts_with(' ')) {
        const int row = Count();
        TuningRecord& tuning = tunings[row];
        tuning.TuningName = AddTitle;
        for (int s = 1; s <= design.NumStrings; ++s)
            tuning.Pitch(s) = Round(Val(Text1.at(static_cast<std::size_t>(s - 1))));
        Combo1.push_back(AddTitle);
        Combo1Index = row;
        Activate(row);
    }
    AddTitle = kUntouchedTitle;
}

void TuningForm::cmdDelete()
{
    if (Count() == 1)
        return;
    // One row beyond the last tuning moves down too; with a full list, that is beyond its end.
    for (int i = Combo1Index + 1; i <= Count(); ++i)
        tunings[i - 1] = tunings[i];
    Combo1.erase(Combo1.begin() + Combo1Index);
    Combo1Click(0);
}

void TuningForm::cmdDefault()
{
    TuningRecord& scratch = tunings[Count()];
    scratch = tunings[0];
    tunings[0] = tunings[Combo1Index];
    tunings[Combo1Index] = scratch;
    for (int i = 0; i < Count(); ++i)
        Combo1.at(static_cast<std::size_t>(i)) = tunings[i].TuningName;
    Combo1Index = 0;
    Activate(0);
}

void TuningForm::cmdSave()
{
    WriteTunings(TuningFile(), tunings.List, Count(), design.NumStrings);
}

void TuningForm::Text1Enter()
{
    if (design.EnterInTextAdds)
        cmdAdd();
}

void TuningForm::AddTitleEnter()
{
    cmdAdd();
    cmdSaveFocused = design.EnterInTitleGoesToSave;
}

}  // namespace quillon
