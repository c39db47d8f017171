// Musics and tunes as short texts, for comparison.

#pragma once

#include "exchange/abc_reader.h"
#include "exchange/table_music.h"
#include "store/note_codes.h"

#include <memory>
#include <string>

namespace quillon {

/// The only tune in an ABC text of which the header is `head` and K:C.
inline FoundTune AbcTune(const std::string& music, const std::string& head = "M:4/4\nL:1/4\n")
{
    return ReadAbc("X:1\n" + head + "K:C\n" + music + "\n").at(0);
}

/// Each event as its pitches and its ticks, "60:12 62,65:6 z:12", bars between measures.
inline std::string EventText(const Music& music)
{
    std::string text;
    for (const MusicMeasure& measure : music.Measures) {
        text += text.empty() ? "" : " |";
        for (const MusicEvent& event : measure.Events) {
            std::string notes;
            for (const MusicNote& note : event.Notes)
                notes += (notes.empty() ? "" : ",") + std::to_string(note.Pitch) +
                         (note.Tied ? "-" : "");
            text += (text.empty() ? "" : " ") + (notes.empty() ? "z" : notes) + ":" +
                    NumberText(static_cast<double>(event.Length) / kTickUnits);
        }
    }
    return text;
}

/// The measures in the order in which they are played, each as the letter of its first note.
inline std::string PlayedLetters(const Music& music)
{
    constexpr std::string_view kLetters = "C.D.EF.G.A.B";
    std::string text;
    for (const int measure : PlayingOf(music).Order)
        text += kLetters[music.Measures[measure].Events.at(0).Notes.at(0).Pitch % 12];
    return text;
}

/// A tune made of a music, and what was said.
struct MadeTune {
    std::unique_ptr<Tune> tune = std::make_unique<Tune>();
    Notices notices;

    explicit MadeTune(const Music& music, int strings = 6, int lowest = 0, int highest = 24)
    {
        tune->NumStrings = strings;
        MakeTune(music, {DefaultTunings(strings), {}, 0, lowest, highest}, *tune, notices);
    }

    /// Each note as its code and its cells, "7:2/1 4:1/0^,2/1"; rests as their code; heads as | and
    /// their signs.
    std::string Text() const
    {
        std::string text;
        for (int i = 1; i <= tune->LastNote; ++i) {
            const NoteRecord& record = (*tune)[i];
            text += text.empty() ? "" : " ";
            if (record.IsHead()) {
                text += "|" + record.BarCode + (record.Slot(2).empty() ? "" : "[" + record.Slot(2));
                continue;
            }
            std::string cells;
            for (int s = 1; s <= kStringSlots; ++s)
                if (!record.Slot(s).empty())
                    cells += (cells.empty() ? "" : ",") + std::to_string(s) + "/" + record.Slot(s);
            text += std::to_string(record.NoteCode) + (cells.empty() ? "" : ":" + cells);
        }
        return text;
    }

    std::string Said() const
    {
        std::string text;
        for (const std::string& line : notices.Lines())
            text += line + "\n";
        return text;
    }
};

}  // namespace quillon
