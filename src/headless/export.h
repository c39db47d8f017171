// A tune loaded without a window, and the text forms of it that the export command makes.

#pragma once

#include "headless/scripted_platform.h"
#include "midi/practice.h"
#include "shell/check.h"
#include "shell/main_win.h"
#include "store/tunings.h"

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillon {

/// What the command line may set. An absent value leaves the tune's header, or the default.
struct ExportOptions {
    std::optional<int> Strings;  // 4, 5 or 6; else by the tune's extension
    std::optional<double> Tempo;
    std::optional<int> Tuning;  // index of a row
    std::optional<int> Capo;
    std::optional<int> Instrument;  // General MIDI program, from 0
    std::string TuningFile;         // "": the default rows of the instrument
    std::optional<std::string> BodyFont;
    std::optional<float> BodySize;
    std::optional<std::string> TitleFont;
    std::optional<float> TitleSize;
    std::optional<float> Left;  // inches, as the three below
    std::optional<float> Right;
    std::optional<float> Top;
    std::optional<float> StaveSpace;
    std::optional<bool> CenterTitle;
};

/// The rows of the tuning list that the options choose.
std::vector<TuningRecord> TuningsOf(const ExportOptions& options, int numStrings);

struct MeasureRange {
    int First;
    int Last;
};

/// A tune that cannot be exported; what() is one line that says what went wrong.
class ExportError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A loaded tune, its first measure shown once. Nothing of the user's settings is read.
class ExportedTune {
public:
    /// An unreadable file or one that is no tune: an ExportError, in the box's own words.
    ExportedTune(const std::string& path, const ExportOptions& options,
                 const TextMetrics& textMetrics, FontCheck hasFont = nullptr);

    /// The same for the bytes of a tune file that another program's file was turned into. All its
    /// measures are shown once, so that its beams are known. `strings` says the instrument.
    ExportedTune(const std::string& bytes, int strings, const ExportOptions& options,
                 const TextMetrics& textMetrics, FontCheck hasFont = nullptr);

    MainWin& Window() { return win; }

    std::string Title() const { return win.tune[0].ChordText; }
    std::string Credit(int line) const { return win.tune[0].Slot(line); }  // 1 or 2
    std::string TuneFile() const;
    std::string MeasureLog();

    /// Leaves nothing but these measures, without heading and line breaks. Ones that the tune does
    /// not have: an ExportError.
    void Keep(const MeasureRange& measures);

    /// Lays the tune out on the page surfaces and returns how many of them hold the tune.
    /// A measure that is too wide for a line: an ExportError.
    int LayOut();
    std::string PageLog();

    /// The printed pages. A measure that is too wide for a line: an ExportError.
    std::vector<Drawing> Print(double paperWidth = kPageWidth, double paperHeight = kPageHeight);
    std::string PrintLog();

    /// The bytes of the tune's MIDI file. A tune that cannot be performed: a Fault, or another
    /// exception that says why.
    std::string MidiFile(const ExportOptions& options);

    /// The same for practice of these measures, or of the whole tune. Measures that are not played:
    /// an exception that says so.
    std::string PracticeFile(const ExportOptions& options,
                             const std::optional<MeasureRange>& measures,
                             const PracticeChoices& choices);

    /// What is wrong with the tune, but for CheckTexts.
    std::vector<Finding> Check(const ExportOptions& options);

    /// The measures in the order in which they are played, separated by blanks. A tune that cannot
    /// be performed: as MidiFile.
    std::string Order();

private:
    void Prepare(int strings);
    void ApplyOptions(const ExportOptions& options);

    const TextMetrics& metrics;
    ScriptedPlatform platform;
    MainWin win;
};

}  // namespace quillon
