// A MIDI file as text, for the tests: read strictly, one event a line.

#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class MidiReader {
public:
    explicit MidiReader(std::string_view theBytes) : bytes(theBytes) {}

    bool AtEnd() const { return position == bytes.size(); }

    int Number(int size)
    {
        int value = 0;
        for (const char c : Take(size))
            value = value << 8 | static_cast<unsigned char>(c);
        return value;
    }

    int VariableLength()
    {
        int value = 0;
        int byte = 0;
        do {
            byte = Number(1);
            value = value << 7 | (byte & 0x7F);
        } while (byte >= 0x80);
        return value;
    }

    /// The content of the chunk that comes next.
    std::string_view Chunk(std::string_view kind)
    {
        if (Take(4) != kind)
            throw std::runtime_error("another chunk");
        return Take(Number(4));
    }

private:
    std::string_view Take(int size)
    {
        if (position + size > bytes.size())
            throw std::runtime_error("too short");
        const std::string_view taken = bytes.substr(position, size);
        position += size;
        return taken;
    }

    std::string_view bytes;
    std::size_t position = 0;
};

/// One event as "delta status data1 data2"; program changes have no data2, Set Tempo and End of
/// Track are "delta tempo MICROSECONDS" and "delta end".
inline std::string MidiEventText(MidiReader& reader)
{
    const std::string delta = std::to_string(reader.VariableLength()) + " ";
    const int status = reader.Number(1);
    if (status != 0xFF) {
        std::string text = delta + std::to_string(status) + " " + std::to_string(reader.Number(1));
        if (status < 0xC0 || status >= 0xE0)
            text += " " + std::to_string(reader.Number(1));
        return text;
    }
    const int kind = reader.Number(1);
    const int size = reader.VariableLength();
    if (kind == 0x51 && size == 3)
        return delta + "tempo " + std::to_string(reader.Number(3));
    if (kind == 0x2F && size == 0)
        return delta + "end";
    throw std::runtime_error("another meta event");
}

struct MidiText {
    int Format = 0;
    int Division = 0;
    std::vector<std::vector<std::string>> Tracks;  // events
};

inline MidiText ReadMidi(std::string_view bytes)
{
    MidiReader file(bytes);
    MidiReader header(file.Chunk("MThd"));
    MidiText text;
    text.Format = header.Number(2);
    text.Tracks.resize(static_cast<std::size_t>(header.Number(2)));
    text.Division = header.Number(2);
    EXPECT_TRUE(header.AtEnd());
    for (auto& events : text.Tracks) {
        MidiReader track(file.Chunk("MTrk"));
        while (!track.AtEnd())
            events.push_back(MidiEventText(track));
    }
    EXPECT_TRUE(file.AtEnd());
    return text;
}

}  // namespace quillon
