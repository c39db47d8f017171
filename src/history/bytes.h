// The bytes of deltas: numbers in as few bytes as they need, texts after their length.

#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillon {

/// Bytes that are not a delta, or a delta that does not start at the current moment.
class DamagedDelta : public std::runtime_error {
public:
    DamagedDelta() : std::runtime_error("damaged delta") {}
};

class ByteWriter {
public:
    void Byte(unsigned value) { bytes += static_cast<char>(value); }
    void Unsigned(std::uint64_t value);
    void Signed(std::int64_t value);
    void Real(double value);
    void Text(std::string_view text);

    std::string Take() { return std::move(bytes); }
    bool IsEmpty() const { return bytes.empty(); }

private:
    std::string bytes;
};

/// Reads what ByteWriter has written. Anything that it cannot have written is a DamagedDelta.
class ByteReader {
public:
    explicit ByteReader(std::string_view theBytes) : bytes(theBytes) {}

    bool AtEnd() const { return position == bytes.size(); }
    std::size_t Left() const { return bytes.size() - position; }

    unsigned Byte();
    std::uint64_t Unsigned();
    std::int64_t Signed();
    double Real();
    std::string_view Text();

    /// A number up to `most`.
    std::size_t Count(std::size_t most);

    /// A number from..to.
    int Integer(int from, int to);

private:
    std::string_view bytes;
    std::size_t position = 0;
};

}  // namespace quillon
