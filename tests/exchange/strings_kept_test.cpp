// The strings and frets of a tablature part are kept, whatever else the document says.

#include "exchange/musicxml_reader.h"

#include "music_text.h"
#include "store/fret_text.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace quillon {
namespace {

using Places = std::map<int, int>;  // frets by string

constexpr const char* kSteps[] = {"C", "D", "E", "F", "G", "A", "B"};
constexpr int kDurations[] = {2, 3, 4, 6, 8, 9, 12, 18, 24, 48};  // in ticks

std::string Element(const std::string& name, const std::string& content)
{
    return "<" + name + ">" + content + "</" + name + ">";
}

/// A score of one part with tablature, and the places of its notes in order.
class TabScore {
public:
    TabScore(int theStrings, unsigned seed) : strings(theStrings), random(seed) {}

    std::string Text()
    {
        std::string measures;
        for (int i = 0; i < 8; ++i)
            measures += "<measure number=\"" + std::to_string(i + 1) + "\">" +
                        (i == 0 ? Attributes() : "") + Measure() + "</measure>";
        return "<score-partwise><part id=\"P1\">" + measures + "</part></score-partwise>";
    }

    std::vector<Places> Events;

private:
    int Upto(int highest) { return static_cast<int>(random() % (highest + 1)); }

    std::string Pitch(int pitch, const std::string& prefix) const
    {
        constexpr std::string_view kLetters = "CCDDEFFGGAAB";
        constexpr std::string_view kSharps = " # #  # # # ";
        return Element(prefix + "step", std::string(1, kLetters[pitch % 12])) +
               (kSharps[pitch % 12] == '#' ? Element(prefix + "alter", "1") : "") +
               Element(prefix + "octave", std::to_string(pitch / 12 - 1));
    }

    std::string Attributes() const
    {
        std::string details;
        for (int line = 1; line <= strings; ++line)
            details += "<staff-tuning line=\"" + std::to_string(line) + "\">" +
                       Pitch(DefaultTunings(strings)[0].Pitch(strings + 1 - line), "tuning-") +
                       "</staff-tuning>";
        return "<attributes><divisions>12</divisions><time><beats>4</beats><beat-type>4</beat-type>"
               "</time><clef><sign>TAB</sign></clef>" +
               Element("staff-details", details) + "</attributes>";
    }

    std::string Measure()
    {
        std::string events;
        for (int left = 48; left > 1;) {
            int duration = kDurations[Upto(9)];
            if (duration > left)
                duration = left == 2 || left % 3 == 0 || left % 2 == 0 ? left : left - 3;
            events += Event(duration);
            left -= duration;
        }
        return events;
    }

    std::string Event(int duration)
    {
        const std::string length = Element("duration", std::to_string(duration));
        if (Upto(9) == 0)
            return Element("note", "<rest/>" + length);
        Places& places = Events.emplace_back();
        std::string notes;
        const int count = 1 + (Upto(2) == 0 ? Upto(strings - 1) : 0);
        while (static_cast<int>(places.size()) < count) {
            const int string = 1 + Upto(strings - 1);
            const bool isShort = strings == 5 && string == 5;
            const int fret = Upto(3) == 0 ? 0 : isShort ? 6 + Upto(12) : 1 + Upto(23);
            if (places.emplace(string, fret).second)
                notes += Note(string, fret, length, places.size() > 1);
        }
        return notes;
    }

    /// Its pitch may contradict its place.
    std::string Note(int string, int fret, const std::string& length, bool inChord)
    {
        const bool isShort = strings == 5 && string == 5 && fret > 5;
        const bool contradicts = !isShort && Upto(9) == 0;
        const int pitch = DefaultTunings(strings)[0].Pitch(string) + fret - (isShort ? 5 : 0);
        const std::string pitchText =
            contradicts ? Element("step", kSteps[Upto(6)]) + Element("octave", "2")
                        : Pitch(pitch, "");
        const std::string slur = Upto(5) == 0 ? "<slur type=\"start\" number=\"1\"/>" : "";
        return Element(
            "note",
            (inChord ? "<chord/>" : "") + Element("pitch", pitchText) + length +
                Element("notations",
                        slur + Element("technical", Element("string", std::to_string(string)) +
                                                        Element("fret", std::to_string(fret)))));
    }

    const int strings;
    std::mt19937 random;
};

/// The places in a tune, without what only goes on.
std::vector<Places> PlacesOf(const Tune& tune)
{
    std::vector<Places> events;
    bool tied = false;
    for (int i = 1; i <= tune.LastNote; ++i) {
        if (tune[i].IsHead() || tune[i].IsRest())
            continue;
        Places places;
        bool ties = false;
        for (int s = 1; s <= tune.NumStrings; ++s)
            if (const std::string& cell = tune[i].Slot(s); !cell.empty()) {
                places[s] = Round(ValUnsigned(cell));
                ties = ties || HasTie(cell);
            }
        if (!tied || places != events.back())
            events.push_back(places);
        tied = ties;
    }
    return events;
}

TEST(StringsKeptTest, AScoresPlacesAreTheTunes)
{
    for (unsigned seed = 1; seed <= 300; ++seed) {
        const int strings = 4 + static_cast<int>(seed % 3);
        TabScore score(strings, seed);
        const std::string text = score.Text();
        const MadeTune made(ReadMusicXml(text).at(0).Tune, strings);
        std::vector<Places> wanted;
        for (const Places& places : score.Events)
            wanted.push_back(places);
        ASSERT_EQ(PlacesOf(*made.tune), wanted) << "seed " << seed << "\n" << text;
    }
}

}  // namespace
}  // namespace quillon
