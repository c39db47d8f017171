#include "exchange/abc_reader.h"

#include "exchange/abc_body.h"
#include "exchange/text.h"

#include <algorithm>
#include <charconv>
#include <memory>

namespace quillon {

namespace {

constexpr std::size_t kMostTunes = 5000;

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// "+:" goes on with the field of the line above.
bool ContinuesField(std::string_view line)
{
    return line.starts_with("+:");
}

/// A field is a letter and a colon; "A:|" is music.
bool IsField(std::string_view line)
{
    return line.size() >= 2 && IsLetter(line[0]) && line[1] == ':' &&
           !(line.size() > 2 && (line[2] == '|' || line[2] == ':'));
}

/// What stands before a comment.
std::string_view WithoutComment(std::string_view line)
{
    for (std::size_t at = 0; (at = line.find('%', at)) != std::string_view::npos; ++at)
        if (at == 0 || line[at - 1] != '\\')
            return line.substr(0, at);
    return line;
}

/// The number of "%%MIDI transpose N"; none of any other line.
std::optional<int> TranspositionOf(std::string_view line)
{
    constexpr std::string_view kStart = "%%MIDI transpose ";
    constexpr int kMost = 48;
    if (!line.starts_with(kStart))
        return std::nullopt;
    const std::string_view number = Trimmed(line.substr(kStart.size()));
    int semitones = 0;
    std::from_chars(number.data(), number.data() + number.size(), semitones);
    return std::clamp(semitones, -kMost, kMost);
}

/// Cuts a file into tunes and their lines.
class AbcFile {
public:
    std::vector<FoundTune> Read(std::string_view bytes)
    {
        if (bytes.starts_with("\xEF\xBB\xBF"))
            bytes.remove_prefix(3);
        while (!bytes.empty()) {
            const std::size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
            ++lineNumber;
            TakeLine(bytes.substr(0, end));
            const std::size_t lineEnd = bytes.substr(end).starts_with("\r\n") ? 2 : 1;
            bytes.remove_prefix(std::min(end + lineEnd, bytes.size()));
        }
        EndTune();
        if (tunes.empty())
            throw ExchangeError("There is no ABC tune in it: a tune begins with a line such as "
                                "X:1, and its music follows a line such as K:G.");
        return std::move(tunes);
    }

private:
    void TakeLine(std::string_view line)
    {
        if (const auto semitones = TranspositionOf(line); semitones && body)
            body->SetTransposition(*semitones);
        if (Trimmed(line).empty()) {
            if (inMusic)
                EndTune();
            return;
        }
        if (line.starts_with("%%begin"))
            inBlock = true;
        if (inBlock) {
            inBlock = !line.starts_with("%%end");
            return;
        }
        line = Trimmed(WithoutComment(line));
        if (IsField(line))
            TakeField(line[0], line.substr(2));
        else if (inMusic && !ContinuesField(line))
            body->TakeLine(line);
    }

    void TakeField(char name, std::string_view text)
    {
        if (name == 'X' || !body) {
            const bool begins = name == 'X' || name == 'T' || name == 'K';
            if (!begins) {
                preamble.emplace_back(name, text);
                return;
            }
            EndTune();
            BeginTune();
        }
        body->TakeField(name, text);
        if (name == 'K' && !inMusic) {
            inMusic = true;
            body->BeginMusic();
        }
    }

    void BeginTune()
    {
        startLine = lineNumber;
        if (tunes.size() >= kMostTunes)
            throw ExchangeError("There are more than " + std::to_string(kMostTunes) +
                                " tunes in it; divide it into several files.");
        found = std::make_unique<FoundTune>();
        body.emplace(found->Tune, found->Said);
        for (const auto& [name, text] : preamble)
            body->TakeField(name, text);
    }

    void EndTune()
    {
        if (body && inMusic)
            body->Finish();
        else if (body)
            found->Failure = "Line " + std::to_string(startLine) +
                             ": the tune that begins here has no line with its key; add one such "
                             "as K:G before the music.";
        if (body)
            tunes.push_back(std::move(*found));
        body.reset();
        inMusic = false;
    }

    std::vector<FoundTune> tunes;
    std::vector<std::pair<char, std::string>> preamble;  // fields before the first tune
    std::unique_ptr<FoundTune> found;                    // the tune in hand
    std::optional<AbcBody> body;
    bool inMusic = false;
    bool inBlock = false;  // of text to be printed, from %%begintext to %%endtext
    int lineNumber = 0;
    int startLine = 0;
};

}  // namespace

std::vector<FoundTune> ReadAbc(std::string_view bytes)
{
    return AbcFile().Read(bytes);
}

}  // namespace quillon
