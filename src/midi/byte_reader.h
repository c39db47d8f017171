// Bytes of a MIDI file, read from the front.

#pragma once

#include <string_view>

namespace quillon {

/// Takes bytes off the front; behind the end there are zeros.
class ByteReader {
public:
    explicit ByteReader(std::string_view theBytes) : bytes(theBytes) {}

    bool AtEnd() const { return bytes.empty(); }

    int Byte()
    {
        if (bytes.empty())
            return 0;
        const auto byte = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        return byte;
    }

    int Peek() const { return bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front()); }

    long long Number(int size)
    {
        long long number = 0;
        for (int i = 0; i < size; ++i)
            number = number << 8 | Byte();
        return number;
    }

    long long VariableLength()
    {
        long long number = 0;
        for (int i = 0; i < 4; ++i) {
            const int byte = Byte();
            number = number << 7 | (byte & 0x7F);
            if (byte < 0x80)
                break;
        }
        return number;
    }

    std::string_view Take(long long size)
    {
        const std::string_view taken = bytes.substr(0, static_cast<std::size_t>(size));
        bytes.remove_prefix(taken.size());
        return taken;
    }

private:
    std::string_view bytes;
};

}  // namespace quillon
