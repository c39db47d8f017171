#include "shell/rescued.h"

#include "store/growing_file.h"
#include "store/staged_file.h"
#include "store/tune_file.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <cwchar>
#include <filesystem>
#include <iomanip>
#include <locale>
#include <map>
#include <sstream>
#include <string_view>

namespace quillon {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMarks[] = {"-Rescue-", "-Discarded-"};  // by Ending
constexpr std::string_view kOldMark = "Rescue-";
constexpr auto kDiscardedStays = std::chrono::days(7);
constexpr auto kBirth = std::chrono::seconds(10);  // for less than this a journal may be empty
constexpr std::uintmax_t kLargestJournal = 64 * 1024 * 1024;
constexpr unsigned kMode = 0600;
constexpr int kMostCharacters = 40;  // of the tune's name; a character has up to four bytes

/// Appends the parked records. Their measures go on counting from `measure`, the last one in the
/// table.
void AppendParkedTail(std::string& bytes, const ParkedTail& parked, int measure)
{
    ItemWriter writer;
    for (NoteRecord record : parked.Records) {
        if (record.IsHead())
            ++measure;
        record.Measure = measure;
        WriteRecord(writer, record);
    }
    bytes += writer.Bytes();
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

/// The part of a copy's name from its time on; "" if it is no copy's name.
std::string TimeIn(const std::string& name)
{
    for (std::string_view mark : {kMarks[0], kMarks[1], kOldMark}) {
        const std::size_t found = name.rfind(mark);
        const std::size_t time = found + mark.size();
        if (found != std::string::npos && time < name.size() && name[time] >= '0' &&
            name[time] <= '9')
            return name.substr(time);
    }
    return {};
}

/// How the names of a tune's copies begin, also if the tune is a copy itself. `stem` is the name of
/// the tune's file without its extension.
std::string TuneName(std::string stem)
{
    for (std::string_view mark : kMarks)
        stem = stem.substr(0, stem.find(mark));
    if (stem.starts_with(kOldMark) && !TimeIn(stem).empty())
        stem.clear();
    std::string name = Readable(stem, kMostCharacters);
    if (name.starts_with('.'))
        name[0] = '_';  // else the copy would be hidden
    return name.empty() ? "Untitled" : name;
}

/// "Greensleeves, 22 Nov 14:05"
std::string Label(const std::string& stem)
{
    std::tm time{};
    std::istringstream text(TimeIn(stem));
    text >> std::get_time(&time, "%Y%m%d-%H%M%S");
    if (!text)
        return stem;
    char when[32];
    std::strftime(when, sizeof when, "%d %b %H:%M", &time);
    return TuneName(stem) + ", " + when;
}

std::vector<fs::path> FilesIn(const std::string& folder)
{
    std::vector<fs::path> files;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored))
        if (entry.is_regular_file(ignored))
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

bool IsTune(const fs::path& path)
{
    const std::string extension = path.extension().string();
    return !extension.empty() && FindModeOfExtension(extension.substr(1));
}

bool IsYoungerThan(const fs::path& path, std::chrono::seconds age)
{
    std::error_code ignored;
    return fs::file_time_type::clock::now() - fs::last_write_time(path, ignored) < age;
}

/// Rescue copies as earlier versions have written them.
void MoveOldCopies(const std::string& programFolder)
{
    std::error_code ignored;
    for (const fs::path& path : FilesIn(programFolder))
        if (IsTune(path) && !TimeIn(path.filename()).empty() && !IsLocked(path))
            fs::rename(path, RescuedFolder(programFolder) / path.filename(), ignored);
}

void RemoveDiscarded(const std::string& programFolder)
{
    std::error_code ignored;
    for (const fs::path& path : FilesIn(RescuedFolder(programFolder)))
        if (path.string().find(kMarks[1]) != std::string::npos &&
            !IsYoungerThan(path, kDiscardedStays))
            fs::remove(path, ignored);
}

/// The journal's contents. What is wrong with a file that tells nothing is in Trouble.
JournalContents Contents(const fs::path& path)
{
    JournalContents contents;
    std::error_code error;
    const FileLock lock(path);
    if (lock.IsOfAnotherUser())
        contents.Trouble = "it belongs to another user";
    else if (fs::file_size(path, error) > kLargestJournal)
        contents.Trouble = error ? error.message() : "it is too large";
    if (!contents.Trouble.empty())
        return contents;
    try {
        return ReadJournal(ReadFileBytes(path));
    } catch (const Fault& fault) {
        contents.Trouble = fault.Explanation().empty() ? fault.what() : fault.Explanation();
        return contents;
    }
}

/// Whether the tune's file is as it was saved last.
bool IsAsSaved(const Saving& saving)
{
    try {
        return ReadFileBytes(saving.Path) == saving.Bytes;
    } catch (const Fault&) {
        return false;
    }
}

/// The files of one run; more than one if it ended while it was going from one to the next.
class EndedRun {
public:
    EndedRun(std::string theFolder, std::string theName)
        : folder(std::move(theFolder)), name(std::move(theName))
    {
    }

    void Add(const fs::path& path) { files.push_back(path); }

    /// Moves what it has left in no file, and removes the rest.
    void Rescue(std::vector<std::string>& notes);

private:
    bool Lives() const;
    void Read(std::vector<std::string>& notes);
    void Keep(const Timeline& run, Ending ending) const;

    std::string folder;
    std::string name;
    std::vector<fs::path> files;
    fs::path best;  // the file that goes furthest
    JournalContents contents;
};

bool EndedRun::Lives() const
{
    return std::ranges::any_of(files, [](const fs::path& path) {
        std::error_code ignored;
        return FileLock(path).IsTaken() ||
               (fs::file_size(path, ignored) == 0 && IsYoungerThan(path, kBirth));
    });
}

void EndedRun::Read(std::vector<std::string>& notes)
{
    std::string trouble;
    for (const fs::path& path : files) {
        JournalContents read = Contents(path);
        if (!read.Run)
            trouble = path.filename().string() + " cannot be brought back: " + read.Trouble + ".";
        else if (!contents.Run || read.Reached.Entries >= contents.Reached.Entries) {
            best = path;
            contents = std::move(read);
        }
    }
    if (!contents.Run)
        notes.push_back(trouble);
}

void EndedRun::Rescue(std::vector<std::string>& notes)
{
    if (Lives())
        return;
    Read(notes);
    if (!contents.Run)
        return;
    const auto& saved = contents.Saved;
    const bool spoilt = saved && !contents.Ended && !IsAsSaved(*saved);
    if (spoilt)
        notes.push_back(saved->Path +
                        " is not as it was saved last. That is among the rescued tunes.");
    std::error_code ignored;
    try {
        if (spoilt || contents.Run->Changed())
            Keep(*contents.Run, contents.Ended.value_or(Ending::Lost));
    } catch (const std::exception& error) {
        notes.push_back(best.filename().string() + " stays where it is: " + error.what() + ".");
        return;
    }
    for (const fs::path& path : files)
        fs::remove(path, ignored);
}

/// With the tune beside it.
void EndedRun::Keep(const Timeline& run, Ending ending) const
{
    const Moment& moment = run.Last();
    const std::string stem =
        RescuedFolder(folder) + "/" + TuneName(fs::path(moment.Music.FileName).stem()) +
        std::string(kMarks[static_cast<std::size_t>(ending)]) + name.substr(kRunPrefix.size());
    TemporaryFile tune(RescuedFolder(folder), kMode);
    tune.Write(RescueBytes(moment.Music, moment.Form));
    tune.Rename(stem + "." + FindMode(moment.Music.NumStrings)->Extension);
    fs::rename(best, stem + std::string(kJournalExtension));
    SyncFolder(RescuedFolder(folder));
}

}  // namespace

std::string RescueBytes(const Tune& tune, const MainForm& form)
{
    std::string bytes = TuneBytes(tune);
    const int last = std::max(int{tune.LastNote}, 0);  // edits can count an empty table below 0
    if (form.InputMode == InputMode::Insert)
        AppendParkedTail(bytes, form.Parked, tune[last].Measure);
    return bytes;
}

std::string RescuedFolder(const std::string& programFolder)
{
    return programFolder + "/Rescued";
}

std::vector<Rescued> RescuedIn(const std::string& programFolder)
{
    std::vector<Rescued> found;
    std::error_code ignored;
    for (const fs::path& path : FilesIn(RescuedFolder(programFolder))) {
        if (!IsTune(path))
            continue;
        fs::path journal = path;
        journal.replace_extension(kJournalExtension);
        found.push_back({path, fs::exists(journal, ignored) ? journal.string() : "",
                         Label(path.stem()), path.string().find(kMarks[1]) != std::string::npos});
    }
    std::ranges::sort(found, std::greater(), [](const Rescued& one) { return TimeIn(one.Tune); });
    return found;
}

std::vector<std::string> RescueEndedRuns(const std::string& programFolder)
{
    std::error_code ignored;
    fs::create_directory(RescuedFolder(programFolder), ignored);
    MoveOldCopies(programFolder);
    std::map<std::string, EndedRun> runs;
    for (const fs::path& path : FilesIn(programFolder)) {
        const std::string name = path.stem().stem();
        if (name.starts_with(kRunPrefix) && path.extension() == kJournalExtension)
            runs.try_emplace(name, programFolder, name).first->second.Add(path);
    }
    std::vector<std::string> notes;
    for (auto& [name, run] : runs)
        run.Rescue(notes);
    RemoveDiscarded(programFolder);
    return notes;
}

std::string WriteRescueCopy(const Tune& tune, const MainForm& form, const std::string& folder)
{
    try {
        TemporaryFile file(folder, kMode);
        file.Write(RescueBytes(tune, form));
        std::string path = fs::path(file.Path())
                               .replace_filename(TuneName(fs::path(tune.FileName).stem()) +
                                                 fs::path(file.Path()).filename().string() + "." +
                                                 FindMode(tune.NumStrings)->Extension);
        file.Rename(path);
        return path;
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace quillon
