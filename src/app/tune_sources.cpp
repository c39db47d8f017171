#include "app/tune_sources.h"

#include "exchange/forms.h"
#include "exchange/table_music.h"
#include "store/item_file.h"
#include "store/tune_file.h"

#include <algorithm>
#include <filesystem>
#include <memory>

namespace quillon {

namespace {

namespace fs = std::filesystem;

/// Of the tune that a music becomes: what the command says, or the output's extension, or the
/// music's own instrument.
int StringsFor(const ExportCommand& command, const Music& music)
{
    if (command.Options.Strings)
        return *command.Options.Strings;
    const std::string extension = fs::path(command.Output).extension().string();
    if (!extension.empty())
        if (const InstrumentMode* mode = FindModeOfExtension(extension.substr(1)))
            return mode->NumStrings;
    const int own = static_cast<int>(music.OpenPitches.size());
    return FindMode(own) ? own : 6;
}

/// Letters and digits of a title, for a file's name; others become one underscore.
std::string FileNameOf(const std::string& title)
{
    constexpr std::size_t kLongest = 60;
    std::string name;
    for (const char c : title) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        if (plain)
            name += c;
        else if (c >= 'A' && c <= 'Z')
            name += static_cast<char>(c - 'A' + 'a');
        else if (c != '\'' && !name.empty() && name.back() != '_')
            name += '_';
    }
    name.resize(std::min(name.size(), kLongest));
    while (name.ends_with('_'))
        name.pop_back();
    return name;
}

std::string TwoDigits(std::size_t number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

/// None of a file that cannot be read, which a tune says in its own words.
std::optional<std::string> BytesOf(const std::string& path)
{
    try {
        return ReadFileBytes(path);
    } catch (const Fault& fault) {
        if (fault.Number() == Error::Overflow)
            throw ExportError(kTooLargeToRead);
        return std::nullopt;
    }
}

void MakeBytes(const ExportCommand& command, FoundTune& found, TuneSource& source)
{
    const ExportOptions& options = command.Options;
    ImportChoices choices;
    choices.Tunings = TuningsOf(options, source.Strings);
    choices.Tuning = options.Tuning;
    choices.Capo = options.Capo.value_or(0);
    choices.LowestFret = command.LowestFret;
    choices.HighestFret = command.HighestFret;
    const auto tune = std::make_unique<Tune>();
    tune->NumStrings = source.Strings;
    try {
        MakeTune(std::move(found.Tune), choices, *tune, found.Said);
        source.Bytes = TuneBytes(*tune);
    } catch (const ExchangeError& error) {
        source.Failure = error.what();
    }
    source.Said = std::move(found.Said);
}

}  // namespace

std::vector<TuneSource> SourcesOf(const ExportCommand& command, const std::string& path)
{
    const std::string stem = fs::path(path).stem().string();
    const ExchangeForm* form = command.From.empty() ? FormOfFile(path) : FindForm(command.From);
    const std::optional<std::string> bytes = form ? BytesOf(path) : std::nullopt;
    if (!bytes || (command.From.empty() && IsTuneFile(*bytes)))
        return {
            {path, stem, 0, "", "", {}}
        };
    std::vector<FoundTune> tunes;
    try {
        tunes = ReadForm(*form, *bytes);
    } catch (const ExchangeError& error) {
        throw ExportError(error.what());
    }
    std::vector<TuneSource> sources;
    for (FoundTune& found : tunes) {
        const std::string title = FileNameOf(found.Tune.Title);
        TuneSource& source = sources.emplace_back();
        source.Path = path;
        source.Name = tunes.size() == 1
                          ? stem
                          : TwoDigits(sources.size()) + (title.empty() ? "" : "_" + title);
        source.Strings = StringsFor(command, found.Tune);
        source.Failure = found.Failure;
        if (source.Failure.empty())
            MakeBytes(command, found, source);
    }
    return sources;
}

}  // namespace quillon
