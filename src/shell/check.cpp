#include "shell/check.h"

#include "midi/midi_bytes.h"
#include "midi/performance.h"
#include "notation/page_layout.h"
#include "notation/print_pass.h"
#include "store/sign_codes.h"

#include <algorithm>
#include <map>

namespace quillon {

namespace {

using Findings = std::vector<Finding>;

constexpr std::size_t kItemsOfLine[] = {3, 4, 5, 1, 1, 1, 1, 1, 1};  // in a record
constexpr double kHeardApart = 0.03;  // seconds: two strokes instead of one
constexpr int kTempoStep = 24;        // of the tempos at which all notes are halved without a rest

constexpr std::size_t kLinesOfRecord = std::size(kItemsOfLine);

/// Takes the first line off `bytes`.
std::string_view TakeLine(std::string_view& bytes)
{
    const std::size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
    const std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(bytes.substr(end).starts_with("\r\n") ? end + 2
                                                              : std::min(end + 1, bytes.size()));
    return line;
}

/// Whether a line reads back as it was written: as `mostItems` items at most, each with no quote or
/// with one at either end. The file's last text may lack the one at its end.
bool IsFaithful(std::string_view line, std::size_t mostItems, bool lastLine)
{
    std::size_t items = 1;
    for (;; ++items) {
        const std::size_t start = std::min(line.find_first_not_of(" \t"), line.size());
        if (line.substr(start).starts_with('"')) {
            const std::size_t close = line.find('"', start + 1);
            if (close == std::string_view::npos)
                return lastLine && items <= mostItems;
            line.remove_prefix(close + 1);
            if (!line.empty() && line.front() != ',')
                return false;
        }
        const std::size_t comma = line.find(',');
        if (line.substr(0, comma).find('"') != std::string_view::npos)
            return false;
        if (comma == std::string_view::npos)
            return items <= mostItems;
        line.remove_prefix(comma + 1);
    }
}

/// The number that a record's first line begins with.
int MeasureOf(std::string_view line)
{
    try {
        return Int16(Round(Val(line.substr(0, line.find(',')))));
    } catch (const Fault&) {
        return 0;
    }
}

std::string BeatsText(int ticks, int ticksPerBeat)
{
    const std::string number = NumberText(Round(100.0 * ticks / ticksPerBeat) / 100.0);
    return number + (number == "1" ? " beat" : " beats");
}

void CheckOrder(const NoteRecord& first, int measureBefore, Findings& findings)
{
    const int measure = first.Measure;
    if (!first.IsHead())
        findings.push_back({measure, "does not begin with a head record"});
    else if (measure == measureBefore)
        findings.push_back({measure, "has a second head record"});
    if (measure == measureBefore || measure == measureBefore + 1)
        return;
    findings.push_back({measure, measureBefore == 0
                                     ? "comes first instead of measure 1"
                                     : "comes after measure " + std::to_string(measureBefore)});
}

/// Any lower number other than 4 counts as 8.
void CheckBeats(const NoteRecord& head, int ticks, bool lastMeasure, Findings& findings)
{
    const int ticksPerBeat = TicksPerBeat(head.BeatUnit);
    const int capacity = head.Beats * ticksPerBeat;
    if (lastMeasure ? ticks <= capacity : ticks == capacity)
        return;
    findings.push_back({head.Measure, "has " + BeatsText(ticks, ticksPerBeat) + " instead of " +
                                          std::to_string(head.Beats)});
}

bool IsAboveHighestFret(std::string_view digits)
{
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits.size() > 2 || Val(digits) > kHighestFret;
}

void CheckCell(const NoteRecord& note, int string, int numStrings, Findings& findings)
{
    const std::string_view cell = note.Slot(string);
    if (cell.empty())
        return;
    const std::string where = "string " + std::to_string(string);
    if (string > numStrings)
        findings.push_back(
            {note.Measure, where + " is not among the instrument's " + std::to_string(numStrings)});
    constexpr std::string_view kDigits = "0123456789";
    for (std::size_t at = 0; (at = cell.find_first_of(kDigits, at)) != std::string_view::npos;) {
        const std::size_t end = std::min(cell.find_first_not_of(kDigits, at), cell.size());
        const std::string_view fret = cell.substr(at, end - at);
        if (IsAboveHighestFret(fret))
            findings.push_back({note.Measure, "fret " + std::string(fret) + " on " + where +
                                                  " is above " + std::to_string(kHighestFret)});
        at = end;
    }
}

/// Number of the ending that a head's bracket opens, 0 if none.
int EndingOf(const NoteRecord& head)
{
    return Round(std::max(ValUnsigned(head.Slot(2)), 0.0));
}

template <typename Visit> void ForEachHead(const Tune& tune, Visit visit)
{
    for (int i = 1; i <= tune.LastNote; ++i)
        if (tune[i].IsHead())
            visit(tune[i]);
}

void CheckRepeats(const Tune& tune, Findings& findings)
{
    int start = 0;          // measure of a repeat start that has no partner yet
    bool repeated = false;  // the section has been repeated already
    bool ending = false;    // in an ending that may be one of several
    const auto closeStart = [&] {
        if (start != 0)
            findings.push_back({start, "begins a repeat that no repeat sign ends"});
    };
    ForEachHead(tune, [&](const NoteRecord& head) {
        if (head.BarCode == kRepeatStart) {
            closeStart();
            start = head.Measure;
            repeated = ending = false;
        }
        ending = ending || EndingOf(head) > 0;
        if (head.BarCode == kRepeatEnd) {
            if (repeated && !ending)
                findings.push_back({head.Measure, "ends a repeat that no repeat start begins"});
            start = 0;
            repeated = true;
            ending = false;
        }
    });
    closeStart();
}

void CheckDs(const Tune& tune, Findings& findings)
{
    bool signMet = false;
    ForEachHead(tune, [&](const NoteRecord& head) {
        const std::string& sign = head.Slot(1);
        signMet = signMet || sign == kSign;
        if (!signMet && (sign == kDs || sign == kDsAlCoda || sign == kDsAlFine))
            findings.push_back({head.Measure, "has a D.S. but no Sign before it"});
    });
}

/// A silent walk through the tune.
struct Rehearsal {
    explicit Rehearsal(Tune& theTune) : tune(theTune) {}

    Tune& tune;
    const Sound silence{};
    Performance performance{tune, silence};
};

/// What a head's signs lead to in the performance.
struct Reached {
    bool Ending = false;  // played on the pass that its bracket is for
    bool Coda = false;    // jumped to
    bool Fine = false;    // the end
};

std::map<int, Reached> WhatIsReached(const Tune& tune, const std::vector<PlayedMeasure>& played)
{
    std::map<int, Reached> reached;
    for (const PlayedMeasure& measure : played) {
        Reached& head = reached[measure.Head];
        head.Ending |= measure.Pass == EndingOf(tune[measure.Head]);
        head.Coda |= measure.FromCoda;
        head.Fine |= measure.FineMode;
    }
    return reached;
}

void CheckReached(const Tune& tune, const std::vector<PlayedMeasure>& played, Findings& findings)
{
    std::map<int, Reached> reached = WhatIsReached(tune, played);
    for (int i = 1; i <= tune.LastNote; ++i) {
        const NoteRecord& head = tune[i];
        if (!head.IsHead())
            continue;
        if (const int ending = EndingOf(head); ending > 0 && !reached[i].Ending)
            findings.push_back(
                {head.Measure, "ending " + std::to_string(ending) + " is never reached"});
        if (head.Slot(1) == kCoda && !reached[i].Coda)
            findings.push_back({head.Measure, "the Coda is never reached"});
        if (head.Slot(1) == kFine && !reached[i].Fine)
            findings.push_back({head.Measure, "the Fine is never reached"});
    }
}

/// Runs a part of the check that may fail by itself. `failure` begins the reason that is then
/// given.
template <typename Part> void Try(Findings& findings, const std::string& failure, Part part)
{
    try {
        part();
    } catch (const Fault& fault) {
        if (fault.Explanation().empty())
            findings.push_back({0, failure + fault.what()});
        else
            findings.push_back({0, fault.Explanation()});
    }
}

void Append(Findings& findings, const Findings& more)
{
    findings.insert(findings.end(), more.begin(), more.end());
}

/// The ink of a title or remark, which is in a row of its own.
struct PrintedText {
    PrintedText(const Operation& op, const TextMetrics& metrics)
        : Name((op.Part == Role::Title ? "the title " : "the remark ") + Quoted(op.Text)),
          Top(op.Y1)
    {
        const InkBox ink = metrics.Ink(op.Text, op.TextFont);
        Left = op.X1 + ink.Left * kTwips;
        Right = op.X1 + ink.Right * kTwips;
    }

    bool RunsInto(const PrintedText& other) const
    {
        return Top == other.Top && Left < other.Right && other.Left < Right;
    }

    std::string Name;
    double Top;
    double Left;
    double Right;
};

/// By how many ticks the strings are late at a time.
struct Lateness {
    Ticks Least;
    Ticks Most;
    int Measure;
};

/// For each time at which notes are due. What cannot be performed is left out.
std::map<Ticks, Lateness> LatenessOf(Tune& tune, int tempo)
{
    std::map<Ticks, Lateness> late;
    Sound sound{.Tempo = Int16(tempo), .OpenPitch = {}};
    sound.OpenPitch.fill(1);  // any pitch that sounds
    Performance performance(tune, sound, [&](int status, int, int velocity, int) {
        if (status < kNoteOn || status >= kProgramChange || velocity == 0)
            return;
        const Ticks now = performance.Late();
        Lateness& all =
            late.try_emplace(performance.Due(), now, now, tune[tune.CurNote].Measure).first->second;
        all.Least = std::min(all.Least, now);
        all.Most = std::max(all.Most, now);
    });
    try {
        for (int s = 1; s <= tune.NumStrings; ++s) {
            performance.TrackString = s;
            performance.BuildStringTrack();
        }
    } catch (const std::exception&) {
        // CheckPerformance tells why.
    }
    return late;
}

}  // namespace

std::string Finding::Text() const
{
    return Measure == 0 ? Reason : "measure " + std::to_string(Measure) + ": " + Reason;
}

std::vector<Finding> CheckTexts(std::string_view fileBytes)
{
    if (fileBytes.empty())
        return {
            {0, "the file is empty"}
        };
    std::vector<std::string_view> lines;
    while (!fileBytes.empty())
        lines.push_back(TakeLine(fileBytes));
    const bool wholeRecords = lines.size() % kLinesOfRecord == 0;  // else no line's place is known
    Findings findings;
    int measure = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::size_t place = i % kLinesOfRecord;
        if (wholeRecords && place == 0)
            measure = MeasureOf(lines[i]);
        const std::size_t mostItems = wholeRecords ? kItemsOfLine[place] : std::string_view::npos;
        if (!IsFaithful(lines[i], mostItems, i + 1 == lines.size()))
            findings.push_back(
                {measure, i < kLinesOfRecord
                              ? "the title, a credit or a font contains a double quote"
                              : "a text contains a double quote"});
    }
    return findings;
}

std::vector<Finding> CheckRecords(const Tune& tune)
{
    Findings findings;
    int measureBefore = 0;
    for (int i = 1; i <= tune.LastNote;) {
        const NoteRecord& first = tune[i];
        if (first.Measure <= 0) {
            findings.push_back({0, "record " + std::to_string(i) + " belongs to no measure"});
            ++i;
            continue;
        }
        CheckOrder(first, measureBefore, findings);
        measureBefore = first.Measure;
        int ticks = 0;
        do {
            ticks += TicksOf(tune[i].NoteCode);
            if (!tune[i].IsHead())
                for (int s = 1; s <= kStringSlots; ++s)
                    CheckCell(tune[i], s, tune.NumStrings, findings);
            ++i;
        } while (i <= tune.LastNote && tune[i].Measure == measureBefore && !tune[i].IsHead());
        if (first.IsHead())
            CheckBeats(first, ticks, i > tune.LastNote, findings);
    }
    return findings;
}

std::vector<Finding> CheckSigns(const Tune& tune)
{
    Findings findings;
    Try(findings, "the repeats cannot be read: ", [&] { CheckRepeats(tune, findings); });
    CheckDs(tune, findings);
    return findings;
}

std::vector<Finding> CheckPerformance(Tune& tune)
{
    Findings findings;
    Rehearsal rehearsal(tune);
    const std::string failure = "cannot be played: ";
    Try(findings, failure, [&] {
        try {
            rehearsal.performance.WalkSilently();
        } catch (const NeverEnding& never) {
            findings.push_back({0, never.what()});
        }
    });
    Try(findings, failure, [&] { CheckReached(tune, rehearsal.performance.Played(), findings); });
    return findings;
}

std::vector<Finding> CheckPages(const Tune& tune, PageSettings& page, PageView& pages,
                                const TextMetrics& metrics)
{
    Findings findings;
    try {
        if (const auto measure = LayOutPages(tune, page, pages))
            findings.push_back({*measure, "is too wide for a line of the page view"});
    } catch (const Fault& fault) {
        const bool tenthPage = fault.Number() == Error::ControlArrayElement;
        findings.push_back({0, tenthPage ? "has more than nine pages"
                                         : std::string("cannot be laid out: ") + fault.what()});
    }
    Try(findings, "cannot be printed: ", [&] {
        const PrintedTune printed = RunPrintPass(tune, page, metrics, kPageWidth, kPageHeight);
        if (printed.TooWideMeasure)
            findings.push_back({*printed.TooWideMeasure, "is too wide for a printed line"});
        Append(findings, CheckPaper(printed.Pages, metrics));
    });
    return findings;
}

std::vector<Finding> CheckPaper(const std::vector<Drawing>& printedPages,
                                const TextMetrics& metrics)
{
    Findings findings;
    for (std::size_t i = 0; i < printedPages.size(); ++i) {
        const std::string where = "page " + std::to_string(i + 1) + ": ";
        std::vector<PrintedText> above;  // the staves
        for (const Operation& op : printedPages[i].Operations()) {
            if (op.Part != Role::Title && op.Part != Role::Remark)
                continue;
            const PrintedText text(op, metrics);
            if (text.Left < 0 || text.Right > kPageWidth)
                findings.push_back({0, where + text.Name + " runs off the paper"});
            for (const PrintedText& other : above)
                if (text.RunsInto(other))
                    findings.push_back({0, where + text.Name + " runs into " + other.Name});
            above.push_back(text);
        }
    }
    if (printedPages.size() > 1 && printedPages.back().Operations().empty())
        findings.push_back({0, "the last printed page is empty"});
    return findings;
}

std::vector<Finding> CheckTogether(Tune& tune, int tempo)
{
    const std::map<Ticks, Lateness> late = LatenessOf(tune, tempo);
    const double ticksPerSecond = double{1} * tempo * tempo / 60;
    const auto apart = std::ranges::find_if(late, [&](const auto& at) {
        return static_cast<double>(at.second.Most - at.second.Least) > kHeardApart * ticksPerSecond;
    });
    if (apart == late.end())
        return {};
    const int better = std::clamp(Round(double{1} * tempo / kTempoStep), 2, 12) * kTempoStep;
    return {
        {apart->second.Measure, "from here on the strings drift apart at a tempo of " +
                                    std::to_string(tempo) + "; multiples of 24, such as " +
                                    std::to_string(better) + ", keep them together"}
    };
}

std::vector<Finding> CheckTune(Tune& tune, PageSettings& page, PageView& pages,
                               const TextMetrics& metrics, int tempo)
{
    std::vector<Finding> findings = CheckRecords(tune);
    for (const auto& more : {CheckSigns(tune), CheckPerformance(tune), CheckTogether(tune, tempo),
                             CheckPages(tune, page, pages, metrics)})
        Append(findings, more);
    return findings;
}

std::vector<int> MeasureOrder(Tune& tune)
{
    Rehearsal rehearsal(tune);
    rehearsal.performance.WalkSilently();
    std::vector<int> order;
    for (const PlayedMeasure& measure : rehearsal.performance.Played())
        order.push_back(tune[measure.Head].Measure);
    return order;
}

std::string OrderInRuns(const std::vector<int>& measures)
{
    std::string text;
    for (std::size_t first = 0; first < measures.size();) {
        std::size_t next = first + 1;
        while (next < measures.size() && measures[next] == measures[next - 1] + 1)
            ++next;
        text += (text.empty() ? "" : ", ") + std::to_string(measures[first]);
        if (next - first > 1)
            text += '-' + std::to_string(measures[next - 1]);
        first = next;
    }
    return text;
}

}  // namespace quillon
