#include "midi/sound_settings.h"

#include <algorithm>

namespace quillon {

std::span<const char* const> InstrumentNames()
{
    // clang-format off
    static constexpr const char* kNames[] = {
        // Pianos
        "Acoustic Grand Piano", "Bright Acoustic Piano", "Electric Grand Piano", "Honkytonk Piano",
        "Rhodes Piano", "Chorus Piano", "Harpsichord", "Clavinet",
        // Chromatic percussion
        "Celesta", "Glockenspiel", "Music Box", "Vibraphone",
        "Marimba", "Xylophone", "Tubular Bells", "Dulcimer",
        // Organs
        "Hammond Organ", "Percuss. Organ", "Rock Organ", "Church Organ",
        "Reed Organ", "Accordion", "Harmonica", "Tango Accordion",
        // Guitars
        "Acoustic Guitar (nylon)", "Acoustic Guitar (steel)",
        "Electric Guitar (jazz)", "Electric Guitar (clean)",
        "Electric Guitar (muted)", "Overdriven Guitar", "Distortion Guitar", "Guitar Harmonics",
        // Basses
        "Acoustic Bass", "Electric Bass (finger)", "Electric Bass (pick)", "Fretless Bass",
        "Slap Bass 1", "Slap Bass 2", "Synth Bass 1", "Synth Bass 2",
        // Strings
        "Violin", "Viola", "Cello", "Contra Bass",
        "Tremolo Strings", "Pizzicato Strings", "Orchestral Harp", "Timpani",
        // Ensembles
        "String Ensemble 1", "String Ensemble 2", "Synth Strings 1", "Synth Strings 2",
        "Choir Aahs", "Voice Oohs", "Synth Voice", "Orchestra Hit",
        // Brass
        "Trumpet", "Trombone", "Tuba", "Muted Trumpet",
        "French Horn", "Brass Section", "Synth Brass 1", "Synth Brass 2",
        // Reeds
        "Soprano Sax", "Alto Sax", "Tenor Sax", "Baritone Sax",
        "Oboe", "English Horn", "Bassoon", "Clarinet",
        // Pipes
        "Piccolo", "Flute", "Recorder", "Pan Flute",
        "Bottle Blow", "Shaku", "Whistle", "Ocarina",
        // Synth leads
        "Lead 1 (square)", "Lead 2 (saw tooth)", "Lead 3 (calliope lead)", "Lead 4 (chiff lead)",
        "Lead 5 (charang)", "Lead 6 (voice)", "Lead 7 (fifths)", "Lead 8 (bass + lead)",
        // Synth pads
        "Pad 1 (new age)", "Pad 2 (warm)", "Pad 3 (poly synth)", "Pad 4 (choir)",
        "Pad 5 (bowed)", "Pad 6 (metallic)", "Pad 7 (halo)", "Pad 8 (sweep)",
        // Synth effects
        "FX 1 (rain)", "FX 2 (sound track)", "FX 3 (crystal)", "FX 4 (atmo - sphere)",
        "FX 5 (bright)", "FX 6 (goblins)", "FX 7 (echoes)", "FX 8 (sci-fi)",
        // Ethnic
        "Sitar", "Banjo",
    };
    // clang-format on
    static_assert(std::size(kNames) == 106);
    return kNames;
}

int HeldTempo(double tempo)
{
    return Round(std::clamp<double>(tempo, kLowestTempo, kHighestTempo));
}

int HeldCapo(int capo)
{
    return std::clamp(capo, 0, kHighestCapo);
}

int TuningRow(const std::string& wanted, int rowCount)
{
    const double row = Val(wanted);
    if (row < 0 || row >= rowCount)
        return 0;
    return Round(row) < rowCount ? Round(row) : 0;
}

void KeepTuning(Tune& tune, int row)
{
    tune[0].Slot(4) = std::to_string(row);
}

std::array<Int16, kStringSlots> OpenPitches(const TuningRecord& tuning, int capo)
{
    std::array<Int16, kStringSlots> pitches = tuning.Pitches;
    for (Int16& pitch : pitches)
        pitch += capo;
    return pitches;
}

}  // namespace quillon
