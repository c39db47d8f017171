#include "midi/midi_file_writer.h"

#include "midi/midi_bytes.h"
#include "store/fault.h"
#include "store/staged_file.h"

#include <algorithm>
#include <system_error>

namespace quillon {

namespace {

constexpr int kLongestDelta = 0x0FFFFFFF;

/// `value` in `size` bytes, the highest first.
std::string BigEndian(std::uint32_t value, int size)
{
    std::string bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

/// Seven bits a byte, the highest first; all bytes but the last have their top bit set.
std::string VariableLength(int value)
{
    if (value < 0 || value > kLongestDelta)
        throw Fault(Error::Overflow);
    std::string bytes(1, static_cast<char>(value & 0x7F));
    while (value >>= 7)
        bytes.insert(bytes.begin(), static_cast<char>(0x80 | (value & 0x7F)));
    return bytes;
}

char DataByte(int value)
{
    return static_cast<char>(std::clamp(value, 0, 127));
}

}  // namespace

void MidiFileWriter::BeginFile()
{
    tracks.clear();
    track.clear();
    trackCount = 0;
}

void MidiFileWriter::WriteEvent(int status, int data1, int data2, int delta)
{
    track += VariableLength(delta);
    track += static_cast<char>(status);
    track += DataByte(data1);
    if (!HasOneDataByte(status))
        track += DataByte(data2);
}

void MidiFileWriter::WriteTempo(int microseconds, int delta)
{
    track += VariableLength(delta);
    track += "\xFF\x51\x03" + BigEndian(static_cast<std::uint32_t>(microseconds), 3);
}

void MidiFileWriter::NextTrack()
{
    EndTrack();
}

void MidiFileWriter::FinishTracks()
{
    EndTrack();
}

void MidiFileWriter::EndTrack()
{
    using namespace std::string_literals;
    track += "\0\xFF\x2F\0"s;
    tracks += "MTrk" + BigEndian(static_cast<std::uint32_t>(track.size()), 4) + track;
    track.clear();
    ++trackCount;
}

std::string MidiFileWriter::Bytes() const
{
    constexpr int kFormat = 1;  // tracks that sound together
    std::string bytes = "MThd" + BigEndian(6, 4);
    for (const int word : {kFormat, trackCount, division})
        bytes += BigEndian(static_cast<std::uint32_t>(word), 2);
    return bytes + tracks;
}

void MidiFileWriter::CloseFile() const
{
    try {
        ReplaceFile(FileName, Bytes());
    } catch (const std::system_error&) {
        throw Fault(Error::PathFileAccess, "The MIDI file cannot be written.");
    }
}

}  // namespace quillon
