#include "shell/chosen_tuning.h"

#include "midi/sound_settings.h"

namespace quillon {

std::vector<TuningRecord> TuningList(const MainWin& win, const InstrumentMode& mode)
{
    try {
        ItemReader reader(ReadFileBytes(win.ProgramFile(mode.TuningFile)));
        Tunings tunings;
        const int count = ReadTunings(reader, mode.NumStrings, tunings);
        tunings.List.resize(static_cast<std::size_t>(count));
        if (count > 0)
            return tunings.List;
    } catch (const Fault&) {  // the first rows will do
    }
    return DefaultTunings(mode.NumStrings);
}

int ChosenTuning(const MainWin& win, const InstrumentMode& mode, int rowCount)
{
    return TuningRow(win.platform.settings.Get(mode.SettingsSection, "Tuning", "0"), rowCount);
}

}  // namespace quillon
