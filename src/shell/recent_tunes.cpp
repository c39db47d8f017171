#include "shell/recent_tunes.h"

#include "shell/menus.h"

#include <algorithm>
#include <sstream>

namespace quillon {

namespace {

constexpr const char* kSection = "Recent";
constexpr const char* kKey = "Tunes";  // paths, one a line

bool CanBeListed(const std::string& path)
{
    return path.starts_with('/') && path.find('\n') == std::string::npos;
}

}  // namespace

std::vector<std::string> RecentTunes(const Settings& settings)
{
    std::istringstream lines(settings.Get(kSection, kKey, ""));
    std::vector<std::string> paths;
    for (std::string path; paths.size() < kMostRecentTunes && std::getline(lines, path);)
        if (CanBeListed(path))
            paths.push_back(path);
    return paths;
}

void RememberTune(Settings& settings, const std::string& path)
{
    std::vector<std::string> paths = RecentTunes(settings);
    if (!CanBeListed(path) || (!paths.empty() && paths.front() == path))
        return;
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    paths.resize(std::min(paths.size(), kMostRecentTunes));
    std::string lines;
    for (const std::string& each : paths)
        lines += (lines.empty() ? "" : "\n") + each;
    settings.Set(kSection, kKey, lines);
}

void OpenWithInstrument(MainWin& win, const std::string& path)
{
    const InstrumentMode* mode =
        FindModeOfExtension(std::string_view(path).substr(path.find_last_of('.') + 1));
    if (mode && mode->NumStrings != win.tune.NumStrings) {
        FindMenuEntry(mode->Command)->Run(win);
        if (mode->NumStrings != win.tune.NumStrings)
            return;
    }
    win.OpenDropped(path);
}

void OpenAsNewTune(MainWin& win, const std::string& path)
{
    const int openings = win.form.Openings;
    OpenWithInstrument(win, path);
    if (win.form.Openings == openings || win.tune.FileName != path)
        return;
    win.tune.FileName.clear();
    win.form.mnuSaveEnabled = false;
}

}  // namespace quillon
