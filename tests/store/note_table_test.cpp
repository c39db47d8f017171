#include "store/note_table.h"

#include "store/tune.h"
#include "support/faults.h"

namespace quillon {
namespace {

TEST(NoteTable, StartsClear)
{
    const NoteTable table;
    for (int i = 0; i <= kLastRecord; ++i)
        EXPECT_TRUE(table[i].IsClear()) << i;
}

TEST(NoteTable, HasRecords0To1500AndNoOthers)
{
    NoteTable table;
    table[0].Measure = 1;
    table[1500].Measure = 1;
    EXPECT_FAULT(table[1501], SubscriptOutOfRange);
    EXPECT_FAULT(table[-1], SubscriptOutOfRange);
}

TEST(NoteTable, ClearsTheHeaderToo)
{
    NoteTable table;
    table[0].ChordText = "Title";
    table[0].LeftHand = 'p';
    table[1500].Slot(6) = "x";
    table.Clear();
    EXPECT_TRUE(table[0].IsClear());
    EXPECT_EQ(table[0].LeftHand, ' ');
    EXPECT_TRUE(table[1500].IsClear());
}

TEST(NoteTable, ClearsARangeAndNothingForAnEmptyOne)
{
    NoteTable table;
    for (int i = 1; i <= 5; ++i)
        table[i].Measure = i;
    table.Clear(2, 4);
    table.Clear(6, 5);
    EXPECT_EQ(table[1].Measure, 1);
    EXPECT_TRUE(table[2].IsClear() && table[4].IsClear());
    EXPECT_EQ(table[5].Measure, 5);
}

TEST(NoteRecord, IsClearOnlyWithoutAnyOfItsFieldsAndClearingTakesThemAll)
{
    using Fill = void (*)(NoteRecord&);
    const Fill fills[] = {
        [](NoteRecord& r) { r.Measure = 1; },    [](NoteRecord& r) { r.NoteCode = -1; },
        [](NoteRecord& r) { r.XPos = 1; },       [](NoteRecord& r) { r.Reserved = 1; },
        [](NoteRecord& r) { r.BeatUnit = 1; },   [](NoteRecord& r) { r.Beats = 1; },
        [](NoteRecord& r) { r.Spacing = 1; },    [](NoteRecord& r) { r.BeamCode = 1; },
        [](NoteRecord& r) { r.BarCode = "0"; },  [](NoteRecord& r) { r.ChordText = "A"; },
        [](NoteRecord& r) { r.LeftHand = '1'; }, [](NoteRecord& r) { r.RightHand = 'p'; },
        [](NoteRecord& r) { r.Slot(1) = "x"; },  [](NoteRecord& r) { r.Slot(6) = "x"; },
    };
    for (const Fill& fill : fills) {
        NoteRecord record;
        fill(record);
        EXPECT_FALSE(record.IsClear()) << &fill - fills;
        record.Clear();
        EXPECT_TRUE(record.IsClear()) << &fill - fills;
    }
}

TEST(NoteTable, CopiesAllFieldsOfARecord)
{
    NoteTable table;
    NoteRecord& r = table[1];
    r.Measure = 1, r.NoteCode = 2, r.XPos = 3, r.Reserved = 4, r.BeatUnit = 5, r.Beats = 6;
    r.Spacing = 7, r.BeamCode = 8, r.BarCode = "99", r.LeftHand = 'a', r.RightHand = 'b';
    r.ChordText = "Am";
    for (int s = 1; s <= 6; ++s)
        r.Slot(s) = std::to_string(s);
    table[2] = table[1];
    table[1].Clear();
    EXPECT_EQ(table[2].Measure, 1);
    EXPECT_EQ(table[2].NoteCode, 2);
    EXPECT_EQ(table[2].XPos, 3);
    EXPECT_EQ(table[2].Reserved, 4);
    EXPECT_EQ(table[2].BeatUnit, 5);
    EXPECT_EQ(table[2].Beats, 6);
    EXPECT_EQ(table[2].Spacing, 7);
    EXPECT_EQ(table[2].BeamCode, 8);
    EXPECT_EQ(table[2].BarCode, "99");
    EXPECT_EQ(table[2].LeftHand, 'a');
    EXPECT_EQ(table[2].RightHand, 'b');
    EXPECT_EQ(table[2].ChordText, "Am");
    EXPECT_EQ(table[2].Slot(1) + table[2].Slot(6), "16");
}

TEST(NoteRecord, HasSlots1To6)
{
    NoteRecord record;
    record.Slot(6) = "x";
    EXPECT_FAULT(record.Slot(0), SubscriptOutOfRange);
    EXPECT_FAULT(record.Slot(7), SubscriptOutOfRange);
}

TEST(NoteRecord, TellsItsHighestFilledSlot)
{
    NoteRecord record;
    EXPECT_EQ(record.HighestFilledSlot(), 0);
    record.Slot(1) = "1";
    EXPECT_EQ(record.HighestFilledSlot(), 1);
    record.Slot(2) = "1";
    record.Slot(5) = " ";
    EXPECT_EQ(record.HighestFilledSlot(), 5);
}

TEST(NoteRecord, KeepsOneCharacterOfAMark)
{
    EXPECT_EQ(OneCharacter("pim"), 'p');
    EXPECT_EQ(OneCharacter(""), ' ');
}

TEST(ModeTable, AreOfSixFiveAndFourStrings)
{
    EXPECT_STREQ(FindMode(6)->Extension, "gui");
    EXPECT_STREQ(FindMode(6)->FileFilter, "Guitar Files (*.gui)|*.gui|All Files (*.*)|*.*");
    EXPECT_STREQ(FindMode(6)->TuningFile, "Strings6.tun");
    EXPECT_STREQ(FindMode(6)->Caption, "LYRANO Tablature Editor for Guitar");
    EXPECT_STREQ(FindMode(6)->FileCaption, "Lyrano - Tablature Editor for Guitar");
    EXPECT_STREQ(FindMode(5)->Extension, "bjo");
    EXPECT_STREQ(FindMode(5)->FileFilter, "Banjo Files (*.bjo)|*.bjo|All Files (*.*)|*.*");
    EXPECT_STREQ(FindMode(5)->TuningFile, "Strings5.tun");
    EXPECT_STREQ(FindMode(5)->Caption, "LYRANO Tablature Editor for Banjo");
    EXPECT_STREQ(FindMode(5)->FileCaption, "Lyrano - Tablature Editor for Banjo");
    EXPECT_STREQ(FindMode(4)->Extension, "bss");
    EXPECT_STREQ(FindMode(4)->FileFilter, "Bass Files (*.bss)|*.bss|All Files (*.*)|*.*");
    EXPECT_STREQ(FindMode(4)->TuningFile, "Strings4.tun");
    EXPECT_STREQ(FindMode(4)->Caption, "LYRANO Tablature Editor for Mandolin/Bass");
    EXPECT_STREQ(FindMode(4)->FileCaption, "Lyrano - Tablature Editor for Mandolin/Bass");
    EXPECT_EQ(FindMode(3), nullptr);
    EXPECT_EQ(FindMode(7), nullptr);
}

}  // namespace
}  // namespace quillon
