#include "history/values.h"

#include "store/tune_file.h"

#include <algorithm>
#include <limits>

namespace quillon {

namespace {

template <typename Enum>
void GetOneOf(ByteReader& bytes, Enum& value, std::initializer_list<Enum> all)
{
    value = static_cast<Enum>(bytes.Byte());
    if (std::find(all.begin(), all.end(), value) == all.end())
        throw DamagedDelta();
}

std::string BytesOf(const std::vector<NoteRecord>& records)
{
    ItemWriter writer;
    for (const NoteRecord& record : records)
        WriteRecord(writer, record);
    return writer.Bytes();
}

}  // namespace

void Put(ByteWriter& bytes, Int16 value)
{
    bytes.Signed(value);
}
void Put(ByteWriter& bytes, int value)
{
    bytes.Signed(value);
}
void Put(ByteWriter& bytes, bool value)
{
    bytes.Byte(value);
}
void Put(ByteWriter& bytes, char value)
{
    bytes.Byte(static_cast<unsigned char>(value));
}
void Put(ByteWriter& bytes, double value)
{
    bytes.Real(value);
}
void Put(ByteWriter& bytes, float value)
{
    bytes.Real(double{value});
}
void Put(ByteWriter& bytes, const std::string& value)
{
    bytes.Text(value);
}
void Put(ByteWriter& bytes, Control value)
{
    bytes.Byte(static_cast<unsigned>(value));
}
void Put(ByteWriter& bytes, EntryState value)
{
    bytes.Byte(static_cast<unsigned>(value));
}

void Put(ByteWriter& bytes, InputMode value)
{
    bytes.Byte(static_cast<unsigned>(value));
}

void Put(ByteWriter& bytes, PenMode value)
{
    bytes.Byte(static_cast<unsigned>(value));
}
void Put(ByteWriter& bytes, PenStyle value)
{
    bytes.Byte(static_cast<unsigned>(value));
}
void Put(ByteWriter& bytes, Role value)
{
    bytes.Byte(static_cast<unsigned>(value));
}

void Put(ByteWriter& bytes, Shape value)
{
    bytes.Byte(static_cast<unsigned>(value));
}

void Get(ByteReader& bytes, Int16& value)
{
    value = bytes.Integer(std::numeric_limits<short>::min(), std::numeric_limits<short>::max());
}

void Get(ByteReader& bytes, int& value)
{
    value = bytes.Integer(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
}

void Get(ByteReader& bytes, bool& value)
{
    value = bytes.Count(1) == 1;
}
void Get(ByteReader& bytes, char& value)
{
    value = static_cast<char>(bytes.Byte());
}
void Get(ByteReader& bytes, double& value)
{
    value = bytes.Real();
}

void Get(ByteReader& bytes, float& value)
{
    const double real = bytes.Real();
    if (real < double{std::numeric_limits<float>::lowest()} ||
        real > double{std::numeric_limits<float>::max()})
        throw DamagedDelta();
    value = static_cast<float>(real);
}

void Get(ByteReader& bytes, std::string& value)
{
    value = bytes.Text();
}

void Get(ByteReader& bytes, Control& value)
{
    value = static_cast<Control>(bytes.Count(static_cast<std::size_t>(Control::Text2)));
}

void Get(ByteReader& bytes, EntryState& value)
{
    value = static_cast<EntryState>(bytes.Count(static_cast<std::size_t>(EntryState::Edit)));
}

void Get(ByteReader& bytes, InputMode& value)
{
    GetOneOf(bytes, value,
             {InputMode::Fret, InputMode::Chord, InputMode::Insert, InputMode::LeftHand,
              InputMode::RightHand, InputMode::Bracket});
}

void Get(ByteReader& bytes, PenMode& value)
{
    GetOneOf(bytes, value, {PenMode::Plain, PenMode::Invert, PenMode::Xor});
}

void Get(ByteReader& bytes, PenStyle& value)
{
    GetOneOf(bytes, value, {PenStyle::Solid, PenStyle::Dotted});
}

void Get(ByteReader& bytes, Role& value)
{
    value = static_cast<Role>(bytes.Count(static_cast<std::size_t>(Role::Fingering)));
}

void Get(ByteReader& bytes, Shape& value)
{
    value = static_cast<Shape>(bytes.Count(static_cast<std::size_t>(Shape::Text)));
}

void Put(ByteWriter& bytes, const ParkedTail& value)
{
    const auto& records = value.Records;
    const bool asRecords = BytesOf(records) == value.Bytes;
    PutList(bytes, records.data(), records.data() + records.size());
    Put(bytes, asRecords);
    if (!asRecords)
        Put(bytes, value.Bytes);
}

void Get(ByteReader& bytes, ParkedTail& value)
{
    value.Records = GetList<NoteRecord>(bytes);
    bool asRecords = false;
    Get(bytes, asRecords);
    if (asRecords)
        value.Bytes = BytesOf(value.Records);
    else
        Get(bytes, value.Bytes);
}

void Put(ByteWriter& bytes, const std::optional<std::string>& value)
{
    Put(bytes, value.has_value());
    if (value)
        Put(bytes, *value);
}

void Get(ByteReader& bytes, std::optional<std::string>& value)
{
    bool there = false;
    Get(bytes, there);
    value.reset();
    if (there)
        Get(bytes, value.emplace());
}

}  // namespace quillon
