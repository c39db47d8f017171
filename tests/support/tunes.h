// Tunes for the tests: building them record by record, random ones, and all of them as text.

#pragma once

#include "store/tune.h"

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace quillon {

/// Appends the head of the next measure.
inline NoteRecord& AddMeasure(Tune& tune, int beats = 4, int beatUnit = 4)
{
    NoteRecord& head = tune[++tune.LastNote];
    head.Measure = ++tune.LastMeas;
    head.NoteCode = kHead;
    head.Beats = beats;
    head.BeatUnit = beatUnit;
    return head;
}

/// Appends a note or rest to the last measure, under the signature of its head.
inline NoteRecord& AddNote(Tune& tune, int code, int string = 0, const std::string& text = {})
{
    NoteRecord& before = tune[tune.LastNote];
    NoteRecord& note = tune[++tune.LastNote];
    note.Measure = before.Measure;
    note.NoteCode = code;
    note.Beats = before.Beats;
    note.BeatUnit = before.BeatUnit;
    if (string > 0)
        note.Slot(string) = text;
    return note;
}

/// The codes of all notes and rests.
inline std::vector<int> NotesAndRests()
{
    std::vector<int> codes;
    for (int code = 0; code < kHead; ++code)
        if (IsNoteValue(code) || IsRestCode(code))
            codes.push_back(code);
    return codes;
}

/// Appends `count` full measures in 4/4, the quarters of measure m on fret m of string 2. They are
/// spaced as the measure view leaves them.
inline void AddFullMeasures(Tune& tune, int count)
{
    for (int i = 0; i < count; ++i) {
        AddMeasure(tune);
        for (int beat = 0; beat < 4; ++beat) {
            NoteRecord& note = AddNote(tune, kQuarter, 2, std::to_string(int{tune.LastMeas}));
            note.XPos = 48 + 24 * beat;
            note.Spacing = 4;
        }
    }
}

/// Any bytes but the double quote, which a tune file cannot hold.
inline std::string RandomText(std::mt19937& random, int longest)
{
    std::string text(random() % (longest + 1), ' ');
    for (char& c : text)
        do
            c = static_cast<char>(random());
        while (c == '"');
    return text;
}

/// Fills every record of a tune of up to `mostRecords` with anything that its fields can hold.
inline Tune RandomTune(std::mt19937& random, int mostRecords)
{
    const auto number = [&] { return static_cast<int>(random() % 65536) - 32768; };
    const auto character = [&] { return OneCharacter(RandomText(random, 1)); };
    Tune tune;
    tune.LastNote = static_cast<int>(random() % (mostRecords + 1));
    for (int i = 0; i <= tune.LastNote; ++i) {
        NoteRecord& record = tune[i];
        record.Measure = 1 + static_cast<int>(random() % 32767);
        for (Int16* field : {&record.NoteCode, &record.XPos, &record.Reserved, &record.BeatUnit,
                             &record.Beats, &record.Spacing, &record.BeamCode})
            *field = number();
        record.BarCode = RandomText(random, 3);
        record.LeftHand = character();
        record.RightHand = character();
        record.ChordText = RandomText(random, 12);
        for (std::string& slot : record.Slots)
            slot = RandomText(random, 6);
    }
    tune.LastMeas = tune[tune.LastNote].Measure;
    return tune;
}

/// One record as text, all fields.
inline std::string RecordText(const NoteRecord& r)
{
    std::ostringstream text;
    text << r.Measure << ' ' << r.NoteCode << ' ' << r.XPos << ' ' << r.Reserved << ' '
         << r.BeatUnit << ' ' << r.Beats << ' ' << r.Spacing << ' ' << r.BeamCode << " \""
         << r.BarCode << "\" \"" << r.LeftHand << "\" \"" << r.RightHand << "\" \"" << r.ChordText
         << '"';
    for (const std::string& slot : r.Slots)
        text << " \"" << slot << '"';
    return text.str();
}

/// The records that are not clear, a line each.
inline std::string TableText(const Tune& tune)
{
    std::ostringstream text;
    for (int i = 0; i <= kLastRecord; ++i)
        if (!tune[i].IsClear())
            text << i << ": " << RecordText(tune[i]) << '\n';
    return text.str();
}

}  // namespace quillon
