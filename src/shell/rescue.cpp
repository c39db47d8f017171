#include "shell/rescue.h"

#include "store/tune_file.h"

#include <algorithm>
#include <ctime>
#include <cwchar>
#include <filesystem>
#include <locale>
#include <random>
#include <string_view>

namespace quillon {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMark = "Rescue-";
constexpr unsigned kMode = 0600;
constexpr int kMostCharacters = 40;  // of the tune's name; a character has up to four bytes

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

/// Its characters, up to so many. What is no UTF-8 or cannot be seen becomes "_".
std::string Readable(const std::string& name, int mostCharacters)
{
    const auto& utf8 =
        std::use_facet<std::codecvt<char32_t, char8_t, std::mbstate_t>>(std::locale::classic());
    const std::u8string bytes(name.begin(), name.end());
    std::string readable;
    std::size_t i = 0;
    for (int count = 0; count < mostCharacters && i < bytes.size(); ++count) {
        std::mbstate_t state = {};
        const char8_t* character = bytes.data() + i;
        const int length = utf8.length(state, character, bytes.data() + bytes.size(), 1);
        const bool isControl = *character < ' ' || *character == 0x7f;
        const auto size = static_cast<std::size_t>(std::max(length, 1));
        readable += length < 1 || isControl ? "_" : name.substr(i, size);
        i += size;
    }
    return readable;
}

/// How the names of a tune's copies begin, also if the tune is a copy itself.
std::string TuneName(const std::string& fileName)
{
    const std::string stem = fs::path(fileName).stem().string();
    std::string name =
        Readable(stem.substr(0, stem.find("-" + std::string(kMark))), kMostCharacters);
    if (name.starts_with('.'))
        name[0] = '_';  // else the copy would be hidden
    return name.empty() ? "Untitled" : name;
}

std::string RandomLetters()
{
    std::random_device random;
    std::string letters;
    for (int i = 0; i < 8; ++i)
        letters += static_cast<char>('a' + random() % 26);
    return letters;
}

/// A path that nobody can foretell, named for the tune and the present time.
std::string NewPath(const Tune& tune, const std::string& folder)
{
    return folder + "/" + TuneName(tune.FileName) + "-" + std::string(kMark) + TimeStamp() + "-" +
           RandomLetters() + "." + FindMode(tune.NumStrings)->Extension;
}

/// The part of a copy's name that tells its time; "" if it is no copy's name.
std::string_view TimeIn(std::string_view name)
{
    const std::size_t mark = name.rfind(kMark);
    const std::size_t time = mark + kMark.size();
    const bool isCopy = mark != std::string_view::npos && time < name.size() && name[time] >= '0' &&
                        name[time] <= '9';
    return isCopy ? name.substr(time) : std::string_view();
}

}  // namespace

std::string RescueBytes(const Tune& tune, const MainForm& form)
{
    std::string bytes = TuneBytes(tune);
    const int last = std::max(int{tune.LastNote}, 0);  // edits can count an empty table below 0
    if (!form.Parked.Bytes.empty())
        AppendParkedTail(bytes, form.Parked, tune[last].Measure);
    return bytes;
}

std::vector<std::string> RescueCopiesIn(const std::string& folder)
{
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        const std::string name = entry.path().filename().string();
        if (!TimeIn(name).empty() && !IsLocked(entry.path()))
            names.push_back(name);
    }
    std::ranges::sort(names, {}, TimeIn);
    return names;
}

/// Whether the tail that was parked at the last refresh is neither parked nor in the table now, or
/// the tune counts as saved without it.
bool RescueCopy::TailWasLost() const
{
    if (parked.empty() || form.Discarded)
        return false;
    if (form.Saved != SavedState::Unsaved)
        return true;
    const ParkedTail& now = form.Parked;
    const bool inserting = form.InputMode == InputMode::Insert;
    if (now.Bytes.empty())
        return inserting;  // read back, unless a second insertion has parked nothing in its place
    return now.Bytes != parked || (now.RecordsBack == 0 && !inserting);
}

void RescueCopy::Write()
{
    std::error_code ignored;
    behind = true;
    try {
        std::string bytes = RescueBytes(tune, form);
        if (bytes != written) {
            auto aside = std::make_unique<TemporaryFile>(folder, kMode);
            aside->Lock();
            aside->Write(bytes);
            if (path.empty())
                path = NewPath(tune, folder);
            aside->Rename(path);
            file = std::move(aside);
            written = std::move(bytes);
        }
        behind = false;
    } catch (const std::exception&) {
        if (!fs::exists(path, ignored))
            path.clear();
    }
}

/// The next copy is another file.
void RescueCopy::LeaveBehind()
{
    path.clear();
    written.clear();
    file.reset();
}

void RescueCopy::Refresh()
{
    if (TailWasLost()) {
        LeaveBehind();
        if (form.InputMode != InputMode::Insert)
            form.Parked = {};  // no command reads it back any more
    }
    Follow();
}

/// Writes or removes the copy, as the tune has come to be.
void RescueCopy::Follow()
{
    parked = form.Parked.Bytes;
    form.Discarded = false;
    if (form.Saved == SavedState::Unsaved) {
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
    if (form.Saved == SavedState::Unsaved && !behind && IsWhole())
        return path;
    written.clear();
    const std::string before = path;
    if (TailWasLost())
        LeaveBehind();
    Follow();
    if (form.Saved == SavedState::Unsaved && behind) {
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
    RescueCopy copy(tune, form, temporary.string());
    copy.Write();
    return copy.path;
}

}  // namespace quillon
