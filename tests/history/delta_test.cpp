#include "history/delta.h"

#include "headless/scenario.h"
#include "history/bytes.h"
#include "shell/steps.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <sstream>

namespace quillon {
namespace {

/// What of a moment can be seen.
std::string TextOf(Moment moment)
{
    std::string text =
        TableText(moment.Music) + moment.StaffBox.Picture().Log() + moment.Form.Parked.Bytes;
    const auto add = [&](const auto& value) {
        if constexpr (std::is_convertible_v<decltype(value), std::string>)
            text += value + ' ';
        else if constexpr (std::is_convertible_v<decltype(value), double>)
            text += std::to_string(static_cast<double>(value)) + ' ';
    };
    std::apply([&](const auto&... field) { (add(field), ...); }, FieldsOf(moment.Values()));
    for (const ScratchBytes& file : moment.ScratchFiles)
        text += file ? *file : "none";
    for (const Operation& op : moment.StaffBox.Picture().Operations())
        text += std::to_string(static_cast<int>(op.Part)) + ' ';
    return text;
}

class DeltaTest : public testing::Test {
protected:
    void Play(const std::vector<std::string>& lines)
    {
        for (const std::string& line : lines)
            EXPECT_TRUE(scenario.Play(line)) << line;
    }

    /// The delta of some events, with the moments that it joins in `before` and `after`.
    std::string DeltaOf(const std::vector<std::string>& lines)
    {
        const Values values = ValuesOf(scenario.Window());
        before.emplace(values);
        Play(lines);
        after.emplace(values);
        Moment moment = *before;
        Changes changes;
        return TakeDelta(values, after->ScratchFiles, moment, false, changes);
    }

    TemporaryDirectory folder;
    std::ostringstream output;
    Scenario scenario{folder.Path(), output};
    std::optional<Moment> before;
    std::optional<Moment> after;
};

const std::vector<std::vector<std::string>> kEvents = {
    {"type 3", "key Down"},
    {"key Enter", "tick"},
    {"toolbar 9", "type 12", "key Enter"},
    {"key F1", "type Am"},
    {"key Enter"},
    {"press cmdNext"},
    {"key F7", "type 1."},
    {"key Enter", "press cmdPrevious"},
    {"menu mnuInsMeas"},
    {"type 3", "key Enter"},
    {"press cmdNext"},
    {"copy 1 2", "menu mnuPaste"},
    {"menu mnuNoteBefore"},
    {"press cmdPrevious", "menu mnuDelMeas"},
    {"ask no", "strings 4"},
};

TEST_F(DeltaTest, LeadsForwardAndBackward)
{
    for (const auto& events : kEvents) {
        const std::string delta = DeltaOf(events);
        Moment moment = *before;
        Apply(delta, Direction::Forward, moment);
        EXPECT_EQ(TextOf(moment), TextOf(*after)) << events.back();
        Apply(delta, Direction::Backward, moment);
        EXPECT_EQ(TextOf(moment), TextOf(*before)) << events.back();
    }
}

TEST_F(DeltaTest, IsEmptyWhereNothingDiffers)
{
    EXPECT_EQ(DeltaOf({"state"}), "");
}

TEST_F(DeltaTest, IsRefusedByAMomentThatItDoesNotLeadFrom)
{
    const std::string delta = DeltaOf({"type 3", "key Enter"});
    Moment moment = *after;
    EXPECT_THROW(Apply(delta, Direction::Forward, moment), DamagedDelta);
    moment = *before;
    EXPECT_THROW(Apply(delta, Direction::Backward, moment), DamagedDelta);
}

// Bytes that were changed may lead somewhere else, where the checksum of a journal would have told,
// but never to a moment in which the program cannot go on.
TEST_F(DeltaTest, IsRefusedWhenDamagedOrLeadsToASoundMoment)
{
    std::mt19937 random(1);
    int refused = 0;
    for (const auto& events : kEvents) {
        const std::string delta = DeltaOf(events);
        for (int i = 0; i < 100; ++i) {
            std::string damaged = delta.substr(0, i < 20 ? random() % delta.size() : delta.size());
            if (i >= 20)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            for (Direction direction : {Direction::Forward, Direction::Backward}) {
                Moment moment = direction == Direction::Forward ? *before : *after;
                try {
                    Apply(damaged, direction, moment);
                    EXPECT_TRUE(moment.IsSound());
                } catch (const DamagedDelta&) {
                    ++refused;
                }
            }
        }
    }
    EXPECT_GT(refused, 1500);
}

TEST_F(DeltaTest, ARecordThatIsPutInMovesTheOthersAndTakesLittleRoom)
{
    Tune tune;
    AddFullMeasures(tune, 280);
    WriteFileBytes("tune.gui", TuneBytes(tune));
    Play({"dialog tune.gui", "menu mnuOpen"});
    EXPECT_LT(DeltaOf({"menu mnuNoteBefore"}).size(), 1000U);
    EXPECT_LT(DeltaOf({"press cmdNext", "menu mnuDelMeas"}).size(), 12'000U);
}

TEST(Bytes, EachKindOfNumberComesBack)
{
    for (double value : {0.0, 1.0, -1.0, 0.5, 8.25, -3.75, 1e9, 1e10, 1e300, -1e-300}) {
        ByteWriter writer;
        writer.Real(value);
        const std::string bytes = writer.Take();
        EXPECT_EQ(ByteReader(bytes).Real(), value);
    }
    for (std::int64_t value : {0, 1, -1, 63, 64, -64, -65, 32767, -32768, 2147483647}) {
        ByteWriter writer;
        writer.Signed(value);
        const std::string bytes = writer.Take();
        EXPECT_EQ(ByteReader(bytes).Signed(), value);
    }
}

TEST(Bytes, WhatNoWriterWritesIsRefused)
{
    EXPECT_THROW(ByteReader("").Byte(), DamagedDelta);
    EXPECT_THROW(ByteReader("\x05"
                            "ab")
                     .Text(),
                 DamagedDelta);
    EXPECT_THROW(ByteReader(std::string(12, '\xff')).Unsigned(), DamagedDelta);
    ByteWriter writer;
    writer.Real(std::numeric_limits<double>::infinity());
    const std::string bytes = writer.Take();
    EXPECT_THROW(ByteReader(bytes).Real(), DamagedDelta);
}

}  // namespace
}  // namespace quillon
