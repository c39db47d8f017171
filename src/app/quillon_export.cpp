// quillon-export: makes something else of tunes, see --help.

#include "app/export_command.h"
#include "store/item_file.h"

#include <filesystem>
#include <iostream>
#include <unistd.h>

namespace {

using namespace quillon;
namespace fs = std::filesystem;

std::string Extension(const std::string& format, int strings)
{
    if (format == "tune")
        return std::string(".") + FindMode(strings)->Extension;
    return format.ends_with("-log") ? ".log" : "." + format;
}

std::string MakeText(const ExportCommand& command, const std::string& path)
{
    const FixedTextMetrics metrics;
    ExportedTune tune(path, command.Options, metrics);
    if (command.Format == "tune")
        return tune.TuneFile();
    if (command.Format == "measure-log")
        return tune.MeasureLog();
    if (command.Format == "page-log")
        return tune.PageLog();
    if (command.Format == "print-log")
        return tune.PrintLog();
    if (command.Format == "mid")
        return tune.MidiFile(command.Options);
    throw ExportError("this program was built without " + command.Format);
}

void Export(const ExportCommand& command, const std::string& path, const std::string& output)
{
    const std::string bytes = MakeText(command, path);
    if (output == "-") {
        std::cout << bytes << std::flush;
        if (!std::cout)
            throw ExportError("standard output cannot be written");
    } else {
        try {
            WriteFileBytes(output, bytes);
        } catch (const Fault&) {
            throw ExportError(output + " cannot be written");
        }
    }
}

bool Try(const ExportCommand& command, const std::string& path, const std::string& output)
{
    try {
        Export(command, path, output);
        return true;
    } catch (const Fault& fault) {
        std::cerr << "quillon-export: " << path << ": " << fault.what();
        if (!fault.Explanation().empty())
            std::cerr << ": " << fault.Explanation();
        std::cerr << '\n';
    } catch (const std::exception& error) {
        std::cerr << "quillon-export: " << path << ": " << error.what() << '\n';
    }
    return false;
}

/// Each tune into the folder Output, under its own name; a tune that fails does not stop the rest.
bool ExportAll(const ExportCommand& command)
{
    const bool progress = isatty(STDERR_FILENO) != 0;
    std::error_code ignored;
    fs::create_directories(command.Output, ignored);
    bool allDone = true;
    for (std::size_t i = 0; i < command.Tunes.size(); ++i) {
        const std::string& path = command.Tunes[i];
        if (progress)
            std::cerr << "\r\x1b[K" << i + 1 << "/" << command.Tunes.size() << " " << path;
        const fs::path name = fs::path(path).stem();
        const int strings = command.Options.Strings.value_or(6);
        const std::string output =
            (fs::path(command.Output) / name).string() + Extension(command.Format, strings);
        if (progress)
            std::cerr << "\r\x1b[K";
        allDone = Try(command, path, output) && allDone;
    }
    return allDone;
}

}  // namespace

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    try {
        const ExportCommand command = ParseExportCommand({argv + 1, argv + argc});
        if (command.Help) {
            std::cout << kExportHelp;
            return 0;
        }
        const bool intoFolder = command.Tunes.size() > 1 || command.Output.ends_with('/') ||
                                fs::is_directory(command.Output);
        const bool done = intoFolder && command.Output != "-"
                              ? ExportAll(command)
                              : Try(command, command.Tunes.front(), command.Output);
        return done ? 0 : 1;
    } catch (const std::invalid_argument& usage) {
        std::cerr << "quillon-export: " << usage.what() << "\nTry quillon-export --help\n";
        return 2;
    }
}
