#include "shell/rescue.h"

#include "store/tune_file.h"

#include <algorithm>
#include <ctime>
#include <filesystem>

namespace quillon {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "Rescue-";

/// Appends the parked records that are not back in the table yet. Their measures go on counting
/// from `measure`, the last one in the table.
void AppendParkedTail(std::string& bytes, const ParkedTail& parked, int measure)
{
    ItemWriter writer;
    for (std::size_t i = static_cast<std::size_t>(parked.RecordsBack); i < parked.Records.size();
         ++i) {
        NoteRecord record = parked.Records[i];
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

/// A path that is free, named for the present time.
std::string NewPath(const MainWin& win, const std::string& folder)
{
    const std::string extension = std::string(".") + FindMode(win.tune.NumStrings)->Extension;
    const std::string stem = folder + "/" + std::string(kPrefix) + TimeStamp();
    std::string free = stem + extension;
    for (int n = 2; fs::exists(free); ++n)
        free = stem + '-' + std::to_string(n).append(extension);
    return free;
}

}  // namespace

std::string RescueBytes(const MainWin& win)
{
    std::string bytes = TuneBytes(win.tune);
    const int last = std::max(int{win.tune.LastNote}, 0);  // edits can count an empty table below 0
    if (!win.form.Parked.Bytes.empty())
        AppendParkedTail(bytes, win.form.Parked, win.tune[last].Measure);
    return bytes;
}

std::vector<std::string> RescueCopiesIn(const std::string& folder)
{
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(kPrefix) && name.find(".part") == std::string::npos)
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Whether the tail that was parked at the last refresh is neither parked nor in the table now, or
/// the tune counts as saved without it.
bool RescueCopy::TailWasLost() const
{
    if (parked.empty() || win.form.Discarded)
        return false;
    if (win.form.Saved != SavedState::Unsaved)
        return true;
    const ParkedTail& now = win.form.Parked;
    const bool inserting = win.form.InputMode == InputMode::Insert;
    if (now.Bytes.empty())
        return inserting;  // read back, unless a second insertion has parked nothing in its place
    return now.Bytes != parked || (now.RecordsBack == 0 && !inserting);
}

void RescueCopy::LeaveBehind()
{
    path.clear();
    written.clear();
}

void RescueCopy::Write()
{
    std::error_code ignored;
    std::string aside;
    behind = true;
    try {
        std::string bytes = RescueBytes(win);
        if (bytes != written) {
            if (path.empty())
                path = NewPath(win, folder);
            aside = path + ".part";
            WriteFileBytes(aside, bytes);
            fs::rename(aside, path);
            written = std::move(bytes);
        }
        behind = false;
    } catch (const std::exception&) {
        fs::remove(aside, ignored);
        if (!fs::exists(path, ignored))
            path.clear();
    }
}

void RescueCopy::Refresh()
{
    if (TailWasLost()) {
        LeaveBehind();
        if (win.form.InputMode != InputMode::Insert)
            win.form.Parked = {};  // no command reads it back any more
    }
    Follow();
}

/// Writes or removes the copy, as the tune has come to be.
void RescueCopy::Follow()
{
    parked = win.form.Parked.Bytes;
    win.form.Discarded = false;
    if (win.form.Saved == SavedState::Unsaved) {
        Write();
    } else if (!path.empty()) {
        std::error_code ignored;
        fs::remove(path, ignored);
        LeaveBehind();
    }
}

bool RescueCopy::IsWhole() const
{
    try {
        return !path.empty() && ReadFileBytes(path) == written;
    } catch (const Fault&) {
        return false;
    }
}

std::string RescueCopy::Keep()
{
    if (win.form.Saved == SavedState::Unsaved && !behind && IsWhole())
        return path;
    written.clear();
    const std::string before = path;
    if (TailWasLost())
        LeaveBehind();
    Follow();
    if (win.form.Saved == SavedState::Unsaved && behind) {
        std::string elsewhere = KeepElsewhere();
        if (!elsewhere.empty())
            return elsewhere;
    }
    std::error_code ignored;
    return path.empty() && fs::exists(before, ignored) ? before : path;
}

/// A new copy in the system's folder for temporary files, which is often on another disk.
std::string RescueCopy::KeepElsewhere() const
{
    std::error_code missing;
    const fs::path temporary = fs::temp_directory_path(missing);
    if (missing)
        return {};
    RescueCopy copy(win, temporary.string());
    copy.Write();
    return copy.path;
}

}  // namespace quillon
