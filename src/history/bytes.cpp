#include "history/bytes.h"

#include <bit>
#include <cmath>

namespace quillon {

namespace {

// A real number is stored as twice its value if it is whole, else as 1 and its eight bytes.
constexpr std::uint64_t kEightBytes = 1;
constexpr double kLargestWhole = 1e9;

constexpr std::uint64_t ZigZag(std::int64_t value)
{
    return (static_cast<std::uint64_t>(value) << 1) ^ static_cast<std::uint64_t>(value >> 63);
}

constexpr std::int64_t ZagZig(std::uint64_t value)
{
    return static_cast<std::int64_t>(value >> 1) ^ -static_cast<std::int64_t>(value & 1);
}

bool IsWhole(double value)
{
    return std::abs(value) <= kLargestWhole && value == std::floor(value) &&
           !(value == 0 && std::signbit(value));
}

}  // namespace

void ByteWriter::Unsigned(std::uint64_t value)
{
    for (; value >= 128; value >>= 7)
        Byte(static_cast<unsigned>(value & 127) | 128);
    Byte(static_cast<unsigned>(value));
}

void ByteWriter::Signed(std::int64_t value)
{
    Unsigned(ZigZag(value));
}

void ByteWriter::Real(double value)
{
    if (IsWhole(value)) {
        Unsigned(ZigZag(static_cast<std::int64_t>(value)) << 1);
        return;
    }
    Unsigned(kEightBytes);
    auto bits = std::bit_cast<std::uint64_t>(value);
    for (int i = 0; i < 8; ++i, bits >>= 8)
        Byte(static_cast<unsigned>(bits & 255));
}

void ByteWriter::Text(std::string_view text)
{
    Unsigned(text.size());
    bytes += text;
}

unsigned ByteReader::Byte()
{
    if (AtEnd())
        throw DamagedDelta();
    return static_cast<unsigned char>(bytes[position++]);
}

std::uint64_t ByteReader::Unsigned()
{
    std::uint64_t value = 0;
    for (int shift = 0; shift < 63; shift += 7) {
        const unsigned byte = Byte();
        value |= static_cast<std::uint64_t>(byte & 127) << shift;
        if (byte < 128)
            return value;
    }
    throw DamagedDelta();
}

std::int64_t ByteReader::Signed()
{
    return ZagZig(Unsigned());
}

double ByteReader::Real()
{
    const std::uint64_t head = Unsigned();
    if (head % 2 == 0)
        return static_cast<double>(ZagZig(head >> 1));
    if (head != kEightBytes)
        throw DamagedDelta();
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i)
        bits |= static_cast<std::uint64_t>(Byte()) << (8 * i);
    const auto value = std::bit_cast<double>(bits);
    if (!std::isfinite(value))
        throw DamagedDelta();
    return value;
}

std::string_view ByteReader::Text()
{
    const std::uint64_t size = Unsigned();
    if (size > Left())
        throw DamagedDelta();
    const std::string_view text = bytes.substr(position, size);
    position += size;
    return text;
}

std::size_t ByteReader::Count(std::size_t most)
{
    const std::uint64_t value = Unsigned();
    if (value > most)
        throw DamagedDelta();
    return static_cast<std::size_t>(value);
}

int ByteReader::Integer(int from, int to)
{
    const std::int64_t value = Signed();
    if (value < from || value > to)
        throw DamagedDelta();
    return static_cast<int>(value);
}

}  // namespace quillon
