// The music of one ABC tune, line by line.

#pragma once

#include "exchange/abc_fields.h"
#include "exchange/music.h"
#include "exchange/notices.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class AbcBody {
public:
    AbcBody(Music& theMusic, Notices& theNotices) : music(theMusic), notices(theNotices) {}

    /// A field of the header, or of the body where it stands.
    void TakeField(char name, std::string_view text);

    /// Semitones that all notes are moved by.
    void SetTransposition(int semitones) { transposition = semitones; }

    /// The header is over: what stands behind it is music.
    void BeginMusic();

    /// A line of music.
    void TakeLine(std::string_view line);

    /// Ends the last measure and puts the parts in order.
    void Finish();

private:
    /// A note of the last event, which a tie may join to the next one.
    struct Sounding {
        std::size_t Measure;
        std::size_t Event;
        std::size_t Note;
        int Step;  // letter and octave
        bool Tied;
    };

    struct Tuplet {
        int Notes = 1;
        int InTimeOf = 1;
        int Left = 0;
    };

    struct Part {
        char Name;
        std::size_t Measure;
    };

    struct Ratio {
        int Upper = 1;
        int Lower = 1;
    };

    MusicMeasure& Open() { return music.Measures.back(); }
    std::size_t OpenIndex() const { return music.Measures.size() - 1; }

    // What stands in a line
    void TakeOne();
    void TakeInBrackets();
    void TakeQuoted();
    void TakeDecoration(char closing);
    void TakeGraceNotes();
    void TakeTuplet();
    void TakeBrokenRhythm();
    void TakeTie();
    void SkipVoice();
    void SkipPast(std::size_t end);

    // Events
    void TakeNote();
    void TakeChord();
    void TakeRest();
    void TakeMeasureRests();
    void TakeChordNote(MusicEvent& event, std::vector<Sounding>& sounding, Units& length);
    MusicNote TakePitch(std::vector<Sounding>& sounding, std::size_t note);
    std::optional<int> TakeAccidental();
    Ratio TakeLength();
    Units Scaled(Units length, Ratio ratio) const;
    void AddEvent(MusicEvent event, std::vector<Sounding> sounding);
    void ApplyBrokenRhythm(MusicEvent& now);

    // Bars
    void TakeBar();
    void TakeEnding();
    void EndMeasure();
    void EndRepeat();
    void StartRepeat();
    void EndSection();
    void TakePart(std::string_view name);
    void PutPartsInOrder();

    void TakeVoice(std::string_view text);
    void TakeText(std::string_view text, std::string& first, std::string* second);

    Music& music;
    Notices& notices;
    bool inMusic = false;

    // What the fields say
    AbcMeter meter;
    std::optional<Units> unit;
    AbcAccidentals key{};
    std::string partOrder;
    int transposition = 0;
    std::optional<std::string> voice;  // the one that is read
    bool otherVoice = false;

    std::string_view rest;  // of the line in hand

    // The measure in hand
    std::array<std::optional<int>, 7> barAccidentals;
    std::vector<Sounding> last;
    Tuplet tuplet;
    int broken = 0;  // number of > behind the last event; of <, below 0
    std::string chord;
    char leftHand = ' ';

    std::size_t eventCount = 0;  // of the tune

    // The section in hand
    std::size_t sectionStart = 0;
    bool openRepeat = false;   // begun by |:
    bool repeated = false;     // a repeat has ended before
    bool laterEnding = false;  // in an ending after the first
    std::vector<Part> parts;
};

}  // namespace quillon
