// The marks in the text of a string's slot.
//
// Each reader of the text handles the marks in its own way: the measure view takes each mark's
// last character off, the page takes off one for all of them, and the performance leaves the text
// as it is (docs/kept_behaviour.md).

#pragma once

#include <string_view>

namespace quillon {

constexpr char kTieMark = '^';
constexpr char kReleaseMark = '<';
constexpr char kBendMark = '>';
constexpr char kHammerMark = '-';  // hammer-on or pull-off
constexpr char kSlideMark = '=';
constexpr std::string_view kRhythmSlash = "/";  // the whole text

/// Whether the note is tied to the next one.
constexpr bool HasTie(std::string_view text)
{
    return text.find(kTieMark) != std::string_view::npos;
}

/// Place of the first release, else of the first bend; npos without either.
constexpr std::size_t FindBend(std::string_view text)
{
    const std::size_t release = text.find(kReleaseMark);
    return release != std::string_view::npos ? release : text.find(kBendMark);
}

/// Place of what connects two frets: of the first hammer-on, else of the first slide; npos without
/// either.
constexpr std::size_t FindConnection(std::string_view text)
{
    const std::size_t hammer = text.find(kHammerMark);
    return hammer != std::string_view::npos ? hammer : text.find(kSlideMark);
}

}  // namespace quillon
