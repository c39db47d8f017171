// quillon-export: converts tunes to other formats, see --help.

#include "app/export_command.h"
#include "app/export_output.h"
#include "app/tune_sources.h"
#include "exchange/forms.h"
#include "platform/renderer.h"
#include "store/item_file.h"
#include "store/staged_file.h"

#include <clocale>
#include <csignal>
#include <cstdint>
#include <dlfcn.h>
#include <filesystem>
#include <iostream>
#include <langinfo.h>
#include <locale.h>
#include <memory>
#include <unistd.h>

namespace {

using namespace quillon;
namespace fs = std::filesystem;

std::unique_ptr<Renderer> renderer;  // reset before main ends, while its library is loaded

/// The renderer, loaded when a format first needs it.
Renderer& TheRenderer()
{
    if (renderer)
        return *renderer;
    const fs::path program = fs::read_symlink("/proc/self/exe");
    const fs::path module = program.parent_path() / "../lib/quillon/libquillon-render.so";
    void* library = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw ExportError(std::string("pages and sound cannot be made: ") + dlerror());
    const auto make = reinterpret_cast<Renderer* (*)()>(dlsym(library, "MakeQuillonRenderer"));
    if (!make)
        throw ExportError(std::string("pages and sound cannot be made: ") + dlerror());
    renderer.reset(make());
    return *renderer;
}

/// What the locale prints on. One that says nothing of a place has the paper that tunes are laid
/// out for.
PaperSize LocalPaper()
{
    constexpr int kLetterMillimeters = 279;
    const locale_t locale = newlocale(LC_PAPER_MASK, "", nullptr);
    if (locale == nullptr)
        return kLetter;
    const std::string name = nl_langinfo_l(_NL_LOCALE_NAME(LC_PAPER), locale);
    const auto height = reinterpret_cast<std::intptr_t>(nl_langinfo_l(_NL_PAPER_HEIGHT, locale));
    freelocale(locale);
    const bool nowhere = name == "C" || name == "POSIX" || name.starts_with("C.");
    return nowhere || height == kLetterMillimeters ? kLetter : kA4;
}

bool ShowsRealFonts(const std::string& format)
{
    return format == "pdf" || format == "svg" || format == "png";
}

bool IsSound(const std::string& format)
{
    return format == "wav" || format == "ogg" || format == "mp3";
}

ExportedTune Load(const ExportCommand& command, const TuneSource& source,
                  const TextMetrics& metrics, FontCheck hasFont = nullptr)
{
    if (!source.Failure.empty())
        throw ExportError(source.Failure);
    if (source.IsForeign())
        return {source.Bytes, source.Strings, command.Options, metrics, std::move(hasFont)};
    return {source.Path, command.Options, metrics, std::move(hasFont)};
}

PaperSize PaperOf(const ExportCommand& command)
{
    if (command.Format != "pdf")
        return kLetter;  // as in the window
    return command.Paper ? *command.Paper : LocalPaper();
}

/// The pages as they are drawn.
std::vector<Drawing> DrawPages(const ExportCommand& command, ExportedTune& tune,
                               const PaperSize& paper)
{
    if (command.Measures)
        tune.Keep(*command.Measures);
    std::vector<Drawing> pages;
    if (command.Format == "pdf") {
        pages = tune.Print(paper.Width, paper.Height);
    } else {
        const int count = tune.LayOut();
        for (int i = 0; i < count; ++i)
            pages.push_back(tune.Window().pages.Page(i).Surface.Picture());
    }
    if (command.NoEmptyPage || command.Crop || command.Measures)
        while (pages.size() > 1 && pages.back().Operations().empty())
            pages.pop_back();
    return pages;
}

std::vector<std::string> MakePages(const ExportCommand& command, ExportedTune& tune)
{
    const PaperSize paper = PaperOf(command);
    const PageChoices choices{.As = command.As,
                              .Width = paper.Width,
                              .Height = paper.Height,
                              .Crop = command.Crop || command.Measures,
                              .Dpi = command.Dpi,
                              .KeepText = command.KeepText,
                              .Title = tune.Title(),
                              .Author = tune.Credit(1),
                              .Subject = tune.Credit(2)};
    const std::vector<Drawing> pages = DrawPages(command, tune, paper);
    if (command.Format == "pdf")
        return {TheRenderer().Pdf(pages, choices)};
    std::vector<std::string> files;
    files.reserve(pages.size());
    for (const Drawing& page : pages)
        files.push_back(command.Format == "svg" ? TheRenderer().Svg(page, choices)
                                                : TheRenderer().Png(page, choices));
    return files;
}

void Tell(const std::string& path, const Notices& notices)
{
    for (const std::string& notice : notices.Lines())
        std::cerr << "quillon-export: " << path << ": " << notice << '\n';
}

/// A tune in another program's form.
std::string ForeignFile(const ExportCommand& command, const std::string& path,
                        const ExchangeForm& form, Tune& tune)
{
    ExportChoices choices;
    choices.Tunings = TuningsOf(command.Options, tune.NumStrings);
    choices.Tuning = command.Options.Tuning;
    choices.Capo = command.Options.Capo.value_or(0);
    choices.Tempo = command.Options.Tempo.value_or(0);
    choices.Reader = form.Reader;
    Notices notices;
    std::string file = form.Write(MusicOf(tune, choices, notices), notices);
    Tell(path, notices);
    return file;
}

std::string MidiFileOf(const ExportCommand& command, ExportedTune& tune)
{
    const PracticeChoices choices = command.Practice();
    if (!command.Measures && choices == PracticeChoices{})
        return tune.MidiFile(command.Options);
    return tune.PracticeFile(command.Options, command.Measures, choices);
}

/// A tune in the given format: the bytes of one file, or of one file per page.
std::vector<std::string> MakeFiles(const ExportCommand& command, const TuneSource& source)
{
    const std::string& format = command.Format;
    const FixedTextMetrics fixed;
    const bool realFonts = ShowsRealFonts(format);
    ExportedTune tune =
        Load(command, source, realFonts ? TheRenderer().Metrics() : fixed,
             [&](const std::string& font) { return !realFonts || TheRenderer().HasFont(font); });
    if (const ExchangeForm* form = FindForm(format); form && form->Write)
        return {ForeignFile(command, source.Path, *form, tune.Window().tune)};
    if (format == "tune")
        return {tune.TuneFile()};
    if (format == "measure-log")
        return {tune.MeasureLog()};
    if (format == "page-log")
        return {tune.PageLog()};
    if (format == "print-log")
        return {tune.PrintLog()};
    if (format == "mid" || IsSound(format))
        return {MidiFileOf(command, tune)};
    return MakePages(command, tune);
}

void ShowProgress(double part)
{
    constexpr int kBar = 40;
    const int done = static_cast<int>(part * kBar);
    std::cerr << "\r[" << std::string(static_cast<std::size_t>(done), '#')
              << std::string(static_cast<std::size_t>(kBar - done), ' ') << "] "
              << static_cast<int>(part * 100) << "%" << (part >= 1 ? "\r\x1b[K" : "") << std::flush;
}

// Sound takes seconds to render, with a large file in progress. Stopping the command then stops the
// rendering first, so that the file is removed.

volatile std::sig_atomic_t stopSignal = 0;

struct Stopped {};

void HeedStopSignals()
{
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;  // as nohup asks for
        action.sa_handler = [](int number) { stopSignal = number; };
        sigaction(signal, &action, nullptr);
    }
}

void WriteSound(const std::string& midiBytes, const std::string& output, const std::string& format)
{
    HeedStopSignals();
    const bool progress = isatty(STDERR_FILENO) != 0;
    WriteRendered(output, [&](const std::string& path) {
        TheRenderer().Sound(midiBytes, path, format, [&](double part) {
            if (stopSignal != 0)
                throw Stopped();
            if (progress)
                ShowProgress(part);
        });
    });
}

void Export(const ExportCommand& command, const TuneSource& source, const std::string& output,
            FilesInUse& inUse)
{
    const std::string& path = source.Path;
    Tell(path, source.Said);
    const std::vector<std::string> files = MakeFiles(command, source);
    const std::vector<std::string> names = NumberedNames(output, files.size());
    for (const std::string& name : names)
        inUse.Refuse(name, path, command.Format == "tune" && !source.IsForeign());
    if (IsSound(command.Format))
        WriteSound(files.front(), output, command.Format);
    else
        WriteFiles(names, files);
    for (const std::string& name : names)
        inUse.Add(name, path);
}

/// Processes one tune. A failure is reported on standard error.
template <typename Work> bool Try(const std::string& path, Work work)
{
    try {
        work();
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

std::string ExtensionOf(const ExportCommand& command, const TuneSource& source)
{
    if (command.Format == "tune")
        return source.IsForeign() ? std::string(".") + FindMode(source.Strings)->Extension
                                  : fs::path(source.Path).extension().string();
    return command.Format.ends_with("-log") ? ".log" : "." + command.Format;
}

/// The tunes in all files. False if a file cannot be read, which does not stop the rest.
bool FindSources(const ExportCommand& command, std::vector<TuneSource>& sources)
{
    bool allDone = true;
    for (const std::string& path : command.Tunes)
        allDone = Try(path,
                      [&] {
                          for (TuneSource& source : SourcesOf(command, path))
                              sources.push_back(std::move(source));
                      }) &&
                  allDone;
    return allDone;
}

/// Each tune into the folder Output, under its own name; a tune that fails does not stop the rest.
bool ExportAll(const ExportCommand& command, const std::vector<TuneSource>& sources)
{
    const bool progress = isatty(STDERR_FILENO) != 0;
    std::error_code ignored;
    fs::create_directories(command.Output, ignored);
    FilesInUse inUse(command.Tunes);
    bool allDone = true;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const TuneSource& source = sources[i];
        if (progress)
            std::cerr << "\r\x1b[K" << i + 1 << "/" << sources.size() << " " << source.Path
                      << std::flush;
        const fs::path name = source.Name + ExtensionOf(command, source);
        const std::string output = (fs::path(command.Output) / name).string();
        allDone = Try(source.Path, [&] { Export(command, source, output, inUse); }) && allDone;
    }
    SyncFolder(command.Output);  // once for all tunes: a sync takes longer than a tune
    if (progress)
        std::cerr << "\r\x1b[K" << std::flush;
    return allDone;
}

/// What the bytes of a tune's file show; nothing if it cannot be read.
std::vector<Finding> CheckFile(const std::string& path)
{
    std::string bytes;
    try {
        bytes = ReadFileBytes(path);
    } catch (const Fault&) {
        return {};
    }
    return CheckTexts(bytes);
}

/// Prints the problems of each tune. False if there are any.
bool CheckAll(const ExportCommand& command, const std::vector<TuneSource>& sources)
{
    static const FixedTextMetrics metrics;
    bool clean = true;
    for (const TuneSource& source : sources) {
        const auto print = [&](const std::vector<Finding>& findings) {
            for (const Finding& finding : findings)
                Say(source.Path + ": " + finding.Text() + "\n");
            clean = clean && findings.empty();
        };
        // The texts come first: they are what most often makes a tune unreadable.
        const bool read = Try(source.Path, [&] {
            if (!source.IsForeign())
                print(CheckFile(source.Path));
            print(Load(command, source, metrics).Check(command.Options));
        });
        clean = clean && read;
    }
    return clean;
}

/// Prints the order in which the measures of each tune are played, one line per tune.
bool OrderAll(const ExportCommand& command, const std::vector<TuneSource>& sources)
{
    static const FixedTextMetrics metrics;
    bool allDone = true;
    for (const TuneSource& source : sources)
        allDone = Try(source.Path, [&] { Say(Load(command, source, metrics).Order() + "\n"); }) &&
                  allDone;
    return allDone;
}

bool ExportOne(const ExportCommand& command, const TuneSource& source)
{
    FilesInUse inUse(command.Tunes);
    return Try(source.Path, [&] {
        Export(command, source, command.Output, inUse);
        SyncFolder(fs::path(command.Output).parent_path());
    });
}

bool WantsFolder(const ExportCommand& command)
{
    std::error_code ignored;
    return command.Output != "-" && (command.Tunes.size() > 1 || command.Output.ends_with('/') ||
                                     fs::is_directory(command.Output, ignored));
}

bool Run(const ExportCommand& command)
{
    std::vector<TuneSource> sources;
    const bool allRead = FindSources(command, sources);
    if (command.Check)
        return CheckAll(command, sources) && allRead;
    if (command.Order)
        return OrderAll(command, sources) && allRead;
    if (WantsFolder(command))
        return ExportAll(command, sources) && allRead;
    if (sources.size() > 1)
        throw ExportError(command.Tunes.front() + ": it holds " + std::to_string(sources.size()) +
                          " tunes; name a folder for them with -o FOLDER/");
    return allRead && ExportOne(command, sources.front());
}

}  // namespace

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    try {
        const ExportCommand command = ParseExportCommand({argv + 1, argv + argc});
        if (command.Help) {
            Say(kExportHelp);
            return 0;
        }
        const bool done = Run(command);
        renderer.reset();
        return done ? 0 : 1;
    } catch (const std::invalid_argument& usage) {
        std::cerr << "quillon-export: " << usage.what() << "\nTry quillon-export --help\n";
        return 2;
    } catch (const ExportError& failure) {
        std::cerr << "quillon-export: " << failure.what() << '\n';
        return 1;
    } catch (const Stopped&) {
        std::signal(stopSignal, SIG_DFL);
        return std::raise(stopSignal);
    }
}
