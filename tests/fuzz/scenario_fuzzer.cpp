// Any bytes as a scenario script: the script ends, a run-time error ends it, or a line that is no
// command does. Never anything else, and what is in the table can always be rescued.
//
// Works in a scratch folder that is empty at each start, but for full.gui: a tune that fills the
// table to its last record. Folders on the command line have to be absolute. A dialog's answer is a
// bare name, so that nothing outside the folder is touched.

#include "headless/scenario.h"
#include "shell/rescued.h"
#include "store/tune_file.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sstream>

using namespace quillon;

namespace {

constexpr int kMostLines = 200;
constexpr std::size_t kLongestLine = 200;

std::string FullTable()
{
    Tune tune;
    AddFullMeasures(tune, kLastRecord / 5);
    return TuneBytes(tune);
}

/// Most scripts open no tune, and need none.
void Prepare(const std::string& folder, const std::string& script)
{
    static const std::string fullTable = FullTable();
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        std::filesystem::remove(entry.path());
    if (script.find("full.gui") != std::string::npos)
        WriteFileBytes(folder + "/full.gui", fullTable);
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
    const std::string script(reinterpret_cast<const char*>(data), size);
    Prepare(folder.Path(), script);
    std::ostringstream output;
    Scenario scenario(folder.Path(), output);
    Play(scenario, script);
    if (RescueBytes(scenario.Window().tune, scenario.Window().form).empty())
        std::abort();
    return 0;
}
