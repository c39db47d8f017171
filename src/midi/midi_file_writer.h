// Standard MIDI Files of format 1, written track by track.
//
// The file grows in memory. It reaches the disk complete, by CloseFile, or not at all. Every event
// has its status byte: running status saves a few bytes but confuses simple readers.

#pragma once

#include <cstdint>
#include <string>

namespace quillon {

class MidiFileWriter {
public:
    std::string FileName;  // path that CloseFile writes to

    /// Starts a new file with its first track.
    void BeginFile();

    /// Adds a channel message to the track. Data bytes are clamped to 0..127; a message with one
    /// data byte (program change, channel pressure) drops `data2`. `delta` is the time in ticks
    /// since the track's previous event; one beyond 28 bits, the most a file can hold, is an
    /// overflow Fault.
    void WriteEvent(int status, int data1, int data2, int delta);

    /// Adds a Set Tempo event, in microseconds per quarter note. `delta` is as above.
    void WriteTempo(int microseconds, int delta = 0);

    /// Ticks per quarter note, 1..32767.
    void SetDivision(int ticks) { division = ticks; }

    /// Ends the track and starts the next.
    void NextTrack();

    /// Ends the last track.
    void FinishTracks();

    /// Replaces whatever is there with the finished file. A failure is a path/file-access
    /// Fault and leaves what was there.
    void CloseFile() const;

    /// The finished file.
    std::string Bytes() const;

private:
    void EndTrack();

    std::string tracks;  // finished ones, as chunks
    std::string track;   // events of the present one
    int trackCount = 0;
    int division = 0;
};

}  // namespace quillon
