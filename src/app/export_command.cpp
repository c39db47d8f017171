#include "app/export_command.h"

#include "exchange/forms.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>

namespace quillon {

const char* const kExportHelp =
    "usage: quillon-export [options] TUNE... -o OUT\n"
    "       quillon-export [options] --check TUNE...\n"
    "       quillon-export [options] --order TUNE...\n"
    "\n"
    "Converts tunes to pages, MIDI files or sound, and other programs' tunes to Quillon's.\n"
    "OUT is a file, - for standard output, or, for several tunes, a folder.\n"
    "\n"
    "  --check           lists the problems of each tune, one per line\n"
    "  --order           prints the order in which the measures are played\n"
    "  --format F        pdf, svg, png, mid, wav, ogg, mp3, abc, musicxml, mxl, ly, txt,\n"
    "                    tune, measure-log, page-log or print-log; without it, OUT's extension\n"
    "                    decides\n"
    "  --from F          abc, musicxml, mxl, mid or txt: the form of TUNE, whatever its extension\n"
    "  --strings N       4, 5 or 6; without it, the tune's extension decides\n"
    "  --tempo T         quarter notes per minute, 30 to 300\n"
    "  --tuning INDEX    row of the tuning list, counted from 0\n"
    "  --tuning-file F   a tuning list other than the default one\n"
    "  --capo C          fret of the capo, 0 to 12\n"
    "  --position L-H    frets between which notes without a fret are played\n"
    "  --instrument P    General MIDI program, counted from 0\n"
    "  --speed P         of sound and MIDI files, per cent of the tempo, 20 to 300\n"
    "  --loop N          they are played N times, 1 to 999\n"
    "  --count-in        they begin with a measure of clicks\n"
    "  --click           they have a click on each beat\n"
    "  --body-font NAME, --body-size S, --title-font NAME, --title-size S\n"
    "  --left I, --right I, --top I, --stave-space I   in inches\n"
    "  --center-title yes|no\n"
    "  --look L          how pages are painted: engraved, or plain as in the window\n"
    "  --measures A-B    only these measures: of pages, without the heading and white space,\n"
    "                    else as they are played from A to B\n"
    "  --crop            without the white space around the music\n"
    "  --paper P         of a PDF, letter or a4; without it, the locale decides\n"
    "  --no-empty-page   leaves out the empty page at the end of some PDFs\n"
    "  --dpi N           pixels per inch of a PNG, 24 to 1200; without it 300\n"
    "  --text            keeps an SVG's texts as texts, in the viewer's fonts\n"
    "  --help            this text\n";

namespace {

constexpr std::string_view kFileFormats[] = {"pdf", "svg", "png", "mid", "wav", "ogg", "mp3"};
constexpr std::string_view kOtherFormats[] = {"tune", "measure-log", "page-log", "print-log"};

[[noreturn]] void Bad(const std::string& reason)
{
    throw std::invalid_argument(reason);
}

constexpr double kLargestNumber = 1e6;  // beyond any size or distance of a page

double Real(const std::string& option, const std::string& text)
{
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() ||
        !(std::abs(number) <= kLargestNumber))
        Bad(option + " needs a number, not '" + text + "'");
    return number;
}

int Whole(const std::string& option, const std::string& text)
{
    int number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size())
        Bad(option + " needs a whole number, not '" + text + "'");
    return number;
}

int Whole(const std::string& option, const std::string& text, int lowest, int highest)
{
    const int number = Whole(option, text);
    if (number < lowest || number > highest)
        Bad(option + " must be " + std::to_string(lowest) + " to " + std::to_string(highest));
    return number;
}

float Single(const std::string& option, const std::string& text)
{
    return static_cast<float>(Real(option, text));
}

/// Two frets such as 0-5 or 7-12.
void ReadPosition(ExportCommand& command, const std::string& option, const std::string& text)
{
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos)
        Bad(option + " needs two frets such as 0-5, not '" + text + "'");
    command.LowestFret = Whole(option, text.substr(0, dash));
    command.HighestFret = Whole(option, text.substr(dash + 1));
    if (command.LowestFret < 0 || command.HighestFret > 24 ||
        command.HighestFret < command.LowestFret + 3)
        Bad(option + " must span at least four frets from 0 to 24");
}

void ReadFrom(ExportCommand& command, const std::string& option, const std::string& text)
{
    const ExchangeForm* form = FindForm(text);
    if (!form || !form->Read)
        Bad(option + " cannot be " + text);
    command.From = text;
}

MeasureRange Measures(const std::string& option, const std::string& text)
{
    const std::size_t dash = text.find('-', 1);
    const MeasureRange range{
        Whole(option, text.substr(0, dash)),
        Whole(option, dash == std::string::npos ? text : text.substr(dash + 1))};
    if (range.First < 1 || range.Last < range.First)
        Bad(option + " needs two measures, the lower one first, not '" + text + "'");
    return range;
}

using Setter = std::function<void(ExportCommand&, const std::string& option, const std::string&)>;

// clang-format off
const std::map<std::string, Setter> kOptions = {
    {"-o", [](auto& c, auto&, auto& text) { c.Output = text; }},
    {"--output", [](auto& c, auto&, auto& text) { c.Output = text; }},
    {"--format", [](auto& c, auto&, auto& text) { c.Format = text; }},
    {"--from", ReadFrom},
    {"--position", ReadPosition},
    {"--strings",
     [](auto& c, auto& name, auto& text) {
         c.Options.Strings = Whole(name, text);
         if (!FindMode(*c.Options.Strings))
             Bad("--strings must be 4, 5 or 6");
     }},
    {"--tempo", [](auto& c, auto& name, auto& text) { c.Options.Tempo = Real(name, text); }},
    {"--tuning", [](auto& c, auto& name, auto& text) { c.Options.Tuning = Whole(name, text); }},
    {"--tuning-file", [](auto& c, auto&, auto& text) { c.Options.TuningFile = text; }},
    {"--capo", [](auto& c, auto& name, auto& text) { c.Options.Capo = Whole(name, text); }},
    {"--instrument",
     [](auto& c, auto& name, auto& text) { c.Options.Instrument = Whole(name, text); }},
    {"--body-font", [](auto& c, auto&, auto& text) { c.Options.BodyFont = text; }},
    {"--body-size",
     [](auto& c, auto& name, auto& text) { c.Options.BodySize = Single(name, text); }},
    {"--title-font", [](auto& c, auto&, auto& text) { c.Options.TitleFont = text; }},
    {"--title-size",
     [](auto& c, auto& name, auto& text) { c.Options.TitleSize = Single(name, text); }},
    {"--left", [](auto& c, auto& name, auto& text) { c.Options.Left = Single(name, text); }},
    {"--right", [](auto& c, auto& name, auto& text) { c.Options.Right = Single(name, text); }},
    {"--top", [](auto& c, auto& name, auto& text) { c.Options.Top = Single(name, text); }},
    {"--stave-space",
     [](auto& c, auto& name, auto& text) { c.Options.StaveSpace = Single(name, text); }},
    {"--center-title",
     [](auto& c, auto&, auto& text) {
         if (text != "yes" && text != "no")
             Bad("--center-title must be yes or no");
         c.Options.CenterTitle = text == "yes";
     }},
    {"--look",
     [](auto& c, auto&, auto& text) {
         if (text != "engraved" && text != "plain")
             Bad("--look must be engraved or plain");
         c.As = text == "plain" ? Look::Plain : Look::Engraved;
     }},
    {"--paper",
     [](auto& c, auto&, auto& text) {
         if (text != "letter" && text != "a4")
             Bad("--paper must be letter or a4");
         c.Paper = text == "a4" ? kA4 : kLetter;
     }},
    {"--dpi",
     [](auto& c, auto& name, auto& text) {
         c.Dpi = Real(name, text);
         if (c.Dpi < 24 || c.Dpi > 1200)
             Bad("--dpi must be 24 to 1200");
     }},
    {"--measures", [](auto& c, auto& name, auto& text) { c.Measures = Measures(name, text); }},
    {"--speed",
     [](auto& c, auto& name, auto& text) {
         c.Speed = Whole(name, text, kSlowestPractice, kFastestPractice);
     }},
    {"--loop", [](auto& c, auto& name, auto& text) { c.Turns = Whole(name, text, 1, kMostTurns); }},
};
// clang-format on

const std::map<std::string, bool ExportCommand::*> kFlags = {
    {"--help",          &ExportCommand::Help       },
    {"-h",              &ExportCommand::Help       },
    {"--check",         &ExportCommand::Check      },
    {"--order",         &ExportCommand::Order      },
    {"--crop",          &ExportCommand::Crop       },
    {"--text",          &ExportCommand::KeepText   },
    {"--no-empty-page", &ExportCommand::NoEmptyPage},
    {"--count-in",      &ExportCommand::CountIn    },
    {"--click",         &ExportCommand::Click      },
};

/// Options that are nothing to most formats: without a word, they would seem to have worked.
const std::map<std::string, std::string> kOnlyFor = {
    {"--paper",         "pdf"                                 },
    {"--no-empty-page", "pdf"                                 },
    {"--dpi",           "png"                                 },
    {"--text",          "svg"                                 },
    {"--crop",          "pdf, svg and png"                    },
    {"--measures",      "pdf, svg, png, mid, wav, ogg and mp3"},
    {"--speed",         "mid, wav, ogg and mp3"               },
    {"--loop",          "mid, wav, ogg and mp3"               },
    {"--count-in",      "mid, wav, ogg and mp3"               },
    {"--click",         "mid, wav, ogg and mp3"               },
};

void RefuseForFormat(const std::vector<std::string>& given, const std::string& format)
{
    for (const std::string& option : given) {
        const auto only = kOnlyFor.find(option);
        if (only != kOnlyFor.end() && only->second.find(format) == std::string::npos)
            Bad(option + " is only for " + only->second);
    }
}

bool Contains(std::span<const std::string_view> names, const std::string& name)
{
    return std::ranges::find(names, name) != names.end();
}

/// The format that a file's extension tells, "" if none.
std::string FormatOf(const std::string& output)
{
    const std::size_t dot = output.find_last_of("./");
    std::string extension =
        dot == std::string::npos || output[dot] == '/' ? "" : output.substr(dot + 1);
    if (FindModeOfExtension(extension))
        return "tune";
    if (Contains(kFileFormats, extension))
        return extension;
    const ExchangeForm* form = FindForm(extension);
    return form && form->Write ? std::string(form->Name) : "";
}

bool IsFormat(const std::string& format)
{
    const ExchangeForm* form = FindForm(format);
    return (form && form->Write) || Contains(kFileFormats, format) ||
           Contains(kOtherFormats, format);
}

bool IsFolder(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

/// Completes what is to be made, and refuses what cannot be.
void SettleOutput(ExportCommand& command, const std::vector<std::string>& given)
{
    if (command.Output.empty())
        Bad("no output given; name one with -o");
    const std::string byExtension = FormatOf(command.Output);
    if (command.Format.empty())
        command.Format = byExtension;
    if (command.Format.empty())
        Bad("cannot tell the format of '" + command.Output + "'; name it with --format");
    if (command.Tunes.size() > 1 && command.Output == "-")
        Bad("several tunes go into a folder, not to standard output");
    if (command.Tunes.size() > 1 && !byExtension.empty() && !IsFolder(command.Output))
        Bad("several tunes go into a folder, but '" + command.Output + "' looks like a file");
    if (!IsFormat(command.Format))
        Bad("unknown format " + command.Format);
    RefuseForFormat(given, command.Format);
}

}  // namespace

ExportCommand ParseExportCommand(const std::vector<std::string>& arguments)
{
    ExportCommand command;
    bool onlyFiles = false;
    std::vector<std::string> given;  // options
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string argument = arguments[i];
        if (onlyFiles || argument.size() < 2 || argument[0] != '-') {
            command.Tunes.push_back(argument);
            continue;
        }
        if (argument == "--") {
            onlyFiles = true;
            continue;
        }
        if (const auto flag = kFlags.find(argument); flag != kFlags.end()) {
            command.*flag->second = true;
            given.push_back(argument);
            if (command.Help)
                return command;
            continue;
        }
        std::optional<std::string> value;
        const std::size_t equals = argument.find('=');
        if (argument.starts_with("--") && equals != std::string::npos) {
            value = argument.substr(equals + 1);
            argument.erase(equals);
        }
        const auto option = kOptions.find(argument);
        if (option == kOptions.end())
            Bad("unknown option " + argument);
        if (!value && i + 1 == arguments.size())
            Bad(argument + " needs a value");
        option->second(command, argument, value ? *value : arguments[++i]);
        given.push_back(argument);
    }
    if (command.Tunes.empty())
        Bad("no tune given");
    if (command.Check || command.Order) {
        if (command.Check && command.Order)
            Bad("--check and --order cannot be combined");
        if (!command.Output.empty() || !command.Format.empty())
            Bad("--check and --order write to standard output only");
        return command;
    }
    SettleOutput(command, given);
    return command;
}

}  // namespace quillon
