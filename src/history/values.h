// The types in a delta: how each is written and read, and the fields of structures.

#pragma once

#include "editor/main_form.h"
#include "history/bytes.h"
#include "notation/drawing.h"

#include <array>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace quillon {

void Put(ByteWriter& bytes, Int16 value);
void Put(ByteWriter& bytes, int value);
void Put(ByteWriter& bytes, bool value);
void Put(ByteWriter& bytes, char value);
void Put(ByteWriter& bytes, double value);
void Put(ByteWriter& bytes, float value);
void Put(ByteWriter& bytes, Control value);
void Put(ByteWriter& bytes, EntryState value);
void Put(ByteWriter& bytes, InputMode value);
void Put(ByteWriter& bytes, PenMode value);
void Put(ByteWriter& bytes, PenStyle value);
void Put(ByteWriter& bytes, Role value);
void Put(ByteWriter& bytes, Shape value);
void Put(ByteWriter& bytes, const std::string& value);
void Put(ByteWriter& bytes, const ParkedTail& value);
void Put(ByteWriter& bytes, const std::optional<std::string>& value);

// What the type cannot hold is a DamagedDelta.
void Get(ByteReader& bytes, Int16& value);
void Get(ByteReader& bytes, int& value);
void Get(ByteReader& bytes, bool& value);
void Get(ByteReader& bytes, char& value);
void Get(ByteReader& bytes, double& value);
void Get(ByteReader& bytes, float& value);
void Get(ByteReader& bytes, Control& value);
void Get(ByteReader& bytes, EntryState& value);
void Get(ByteReader& bytes, InputMode& value);
void Get(ByteReader& bytes, PenMode& value);
void Get(ByteReader& bytes, PenStyle& value);
void Get(ByteReader& bytes, Role& value);
void Get(ByteReader& bytes, Shape& value);
void Get(ByteReader& bytes, std::string& value);
void Get(ByteReader& bytes, ParkedTail& value);
void Get(ByteReader& bytes, std::optional<std::string>& value);

template <typename Value, std::size_t count>
void Put(ByteWriter& bytes, const std::array<Value, count>& values)
{
    for (const Value& value : values)
        Put(bytes, value);
}

template <typename Value, std::size_t count>
void Get(ByteReader& bytes, std::array<Value, count>& values)
{
    for (Value& value : values)
        Get(bytes, value);
}

// The fields of a structure, those that change most first: a mask says which are told.

inline auto FieldsOf(NoteRecord& r)
{
    return std::tie(r.XPos, r.Measure, r.NoteCode, r.Spacing, r.BeamCode, r.Slots[0], r.Slots[1],
                    r.Slots[2], r.Slots[3], r.Slots[4], r.Slots[5], r.BeatUnit, r.Beats,
                    r.ChordText, r.LeftHand, r.RightHand, r.BarCode, r.Reserved);
}

inline auto FieldsOf(Operation& op)
{
    return std::tie(op.X1, op.Y1, op.X2, op.Y2, op.Text, op.Kind, op.TextFont.Size, op.Width,
                    op.TextFont.Name, op.TextFont.Bold, op.Radius, op.Filled, op.Start, op.End,
                    op.Aspect, op.Mode, op.Style, op.Part);
}

template <typename Fields, typename Visit, std::size_t... places>
void VisitEach(const Fields& fields, Visit& visit, std::index_sequence<places...>)
{
    (visit(places, std::get<places>(fields)), ...);
}

/// Visits each field with its place in the list.
template <typename Fields, typename Visit> void EachField(const Fields& fields, Visit visit)
{
    VisitEach(fields, visit, std::make_index_sequence<std::tuple_size_v<Fields>>());
}

template <typename Fields, typename Visit, std::size_t... places>
void VisitPairs(const Fields& a, const Fields& b, Visit& visit, std::index_sequence<places...>)
{
    (visit(places, std::get<places>(a), std::get<places>(b)), ...);
}

template <typename Fields, typename Visit>
void EachPair(const Fields& a, const Fields& b, Visit visit)
{
    VisitPairs(a, b, visit, std::make_index_sequence<std::tuple_size_v<Fields>>());
}

template <typename Fields> std::uint64_t MaskOf(const Fields& a, const Fields& b)
{
    std::uint64_t mask = 0;
    EachPair(a, b, [&](std::size_t place, const auto& x, const auto& y) {
        if (x != y)
            mask |= std::uint64_t{1} << place;
    });
    return mask;
}

inline bool IsIn(std::uint64_t mask, std::size_t place)
{
    return (mask >> place & 1) != 0;
}

/// A structure as its differences from another one.
template <typename Structure> void PutLike(ByteWriter& bytes, Structure value, Structure like)
{
    const std::uint64_t mask = MaskOf(FieldsOf(value), FieldsOf(like));
    bytes.Unsigned(mask);
    EachField(FieldsOf(value), [&](std::size_t place, const auto& field) {
        if (IsIn(mask, place))
            Put(bytes, field);
    });
}

template <typename Structure> Structure GetLike(ByteReader& bytes, Structure like)
{
    const std::uint64_t mask = bytes.Unsigned();
    EachField(FieldsOf(like), [&](std::size_t place, auto& field) {
        if (IsIn(mask, place))
            Get(bytes, field);
    });
    return like;
}

template <typename Structure>
void PutList(ByteWriter& bytes, const Structure* begin, const Structure* end)
{
    bytes.Unsigned(static_cast<std::uint64_t>(end - begin));
    for (const Structure* one = begin; one != end; ++one)
        PutLike(bytes, *one, one == begin ? Structure() : one[-1]);
}

template <typename Structure> std::vector<Structure> GetList(ByteReader& bytes)
{
    std::vector<Structure> list(bytes.Count(bytes.Left()));
    for (std::size_t i = 0; i < list.size(); ++i)
        list[i] = GetLike(bytes, i == 0 ? Structure() : list[i - 1]);
    return list;
}

}  // namespace quillon
