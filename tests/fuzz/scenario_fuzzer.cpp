// Any bytes as a scenario script: the script ends, a run-time error ends it, or a line that is no
// command does. Never anything else, and what is in the table can always be rescued.
//
// Works in a scratch folder that is empty at each start: folders on the command line have to be
// absolute. A dialog's answer is a bare name, so that nothing outside the folder is touched.

#include "headless/scenario.h"
#include "shell/rescue.h"
#include "support/temporary_directory.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sstream>

using namespace quillon;

namespace {

constexpr int kMostLines = 200;
constexpr std::size_t kLongestLine = 200;

void Empty(const std::string& folder)
{
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        std::filesystem::remove(entry.path());
}

bool MayBePlayed(const std::string& line)
{
    const bool namesFolder = line.starts_with("dialog") && line.find('/') != std::string::npos;
    return line.size() <= kLongestLine && !namesFolder;
}

void Play(Scenario& scenario, const std::string& script)
{
    std::istringstream lines(script);
    std::string line;
    for (int i = 0; i < kMostLines && std::getline(lines, line); ++i)
        if (MayBePlayed(line) && !scenario.Play(line))
            return;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const TemporaryDirectory folder;
    Empty(folder.Path());
    std::ostringstream output;
    Scenario scenario(folder.Path(), output);
    Play(scenario, {reinterpret_cast<const char*>(data), size});
    if (RescueBytes(scenario.Window()).empty())
        std::abort();
    return 0;
}
