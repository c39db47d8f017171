// The rescue copy: unsaved work outlives a run-time error.

#include "shell/main_win.h"
#include "store/tune_file.h"

#include <ctime>
#include <filesystem>

namespace quillon {

namespace {

/// Appends the parked records that are not back in the table yet. Their measures go on counting
/// from `measure`, the last one in the table.
void AppendParkedTail(std::string& bytes, const ParkedTail& parked, int measure)
{
    ItemReader reader(parked.Bytes);
    ItemWriter writer;
    NoteRecord record;
    for (int i = 0; !reader.AtEnd(); ++i) {
        ReadRecord(reader, record);
        if (i < parked.RecordsBack)
            continue;
        if (record.IsHead())
            ++measure;
        record.Measure = measure;
        WriteRecord(writer, record);
    }
    bytes += writer.Bytes();
}

std::string TimeStamp()
{
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", std::localtime(&now));
    return text;
}

}  // namespace

std::string RescueBytes(const MainWin& win)
{
    std::string bytes = TuneBytes(win.tune);
    if (!win.form.Parked.Bytes.empty())
        AppendParkedTail(bytes, win.form.Parked, win.tune[win.tune.LastNote].Measure);
    return bytes;
}

std::string WriteRescueCopy(const MainWin& win, const std::string& folder)
{
    const std::string extension = std::string(".") + FindMode(win.tune.NumStrings)->Extension;
    const std::string stem = folder + "/Rescue-" + TimeStamp();
    std::string path = stem + extension;
    for (int n = 2; std::filesystem::exists(path); ++n)
        path = stem + '-' + std::to_string(n).append(extension);
    try {
        WriteFileBytes(path, RescueBytes(win));
        return path;
    } catch (const Fault&) {
        return {};
    }
}

}  // namespace quillon
