#include "shell/spoken.h"

#include "support/desk.h"

namespace quillon {
namespace {

class Spoken : public Desk {
protected:
    Spoken() { Start(); }

    std::string Cursor() const { return SpokenCursor(win.tune, win.form); }
};

TEST_F(Spoken, FreeColumnTellsTheValueToCome)
{
    EXPECT_EQ(Cursor(), "Measure 1, new column 1, string 6, no fret, quarter note");
    win.editor.Toolbar1(kEighth);
    EXPECT_EQ(Cursor(), "Measure 1, new column 1, string 6, no fret, eighth note");
    Type("7");
    EXPECT_EQ(Cursor(), "Measure 1, column 1 of 1, string 6, fret 7, eighth note");
}

TEST_F(Spoken, ColumnOfTheMeasureTellsWhatStandsThere)
{
    Type("5\r3\r");
    win.editor.StaffBoxKeyDown(kKeyLeft);
    EXPECT_EQ(Cursor(), "Measure 1, column 2 of 2, string 6, fret 3, quarter note");
    win.editor.StaffBoxKeyDown(kKeyLeft);
    EXPECT_EQ(Cursor(), "Measure 1, column 1 of 2, string 6, fret 5, quarter note");
    win.editor.StaffBoxKeyDown(kKeyUp);
    EXPECT_EQ(Cursor(), "Measure 1, column 1 of 2, string 5, no fret, quarter note");
    for (int i = 0; i < 4; ++i)
        win.editor.StaffBoxKeyDown(kKeyUp);
    EXPECT_EQ(Cursor(), "Measure 1, column 1 of 2, string 1, no fret, quarter note");
}

TEST_F(Spoken, AChangeIsSaidByItsPartsAlone)
{
    const auto change = [this](const std::function<void()>& act) {
        const std::string before = Cursor();
        act();
        return SpokenChange(before, Cursor());
    };
    const auto type = [&](const char* text) { return change([&] { Type(text); }); };
    const auto key = [&](int code) { return change([&] { win.editor.StaffBoxKeyDown(code); }); };
    EXPECT_EQ(type("1"), "column 1 of 1, fret 1");
    EXPECT_EQ(type("2"), "fret 12");
    EXPECT_EQ(type("\r"), "new column 2, no fret");
    EXPECT_EQ(type("+"), "sixteenth note");
    EXPECT_EQ(key(kKeyUp), "string 5");
    EXPECT_EQ(key(kKeyLeft), "column 1 of 1, string 6, fret 12, quarter note");
    EXPECT_EQ(key(kKeyLeft), "");
    EXPECT_EQ(change([&] { win.editor.mnuChord(); }),
              "Measure 1, column 1 of 1, no chord, quarter note");
    EXPECT_EQ(type("A"), "chord A");
    EXPECT_EQ(SpokenChange("Measure 1, string 6", "Measure 2, string 6"), "Measure 2, string 6");
    EXPECT_EQ(SpokenChange("", "Measure 2"), "Measure 2");
}

TEST_F(Spoken, RestIsARest)
{
    win.editor.mnuHalfRest();
    win.editor.StaffBoxKeyDown(kKeyLeft);
    EXPECT_EQ(Cursor(), "Measure 1, column 1 of 1, string 6, no fret, half rest");
}

TEST_F(Spoken, TextModesTellTheirText)
{
    Type("5\r3\r");
    win.editor.StaffBoxKeyDown(kKeyLeft);
    win.editor.mnuChord();
    EXPECT_EQ(Cursor(), "Measure 1, column 2 of 2, no chord, quarter note");
    Type("Am");
    EXPECT_EQ(Cursor(), "Measure 1, column 2 of 2, chord Am, quarter note");
    Type("\r");
    win.form.InputMode = InputMode::RightHand;
    win.tune[win.tune.CurNote].RightHand = 'i';
    EXPECT_NE(Cursor().find("right-hand fingering i"), std::string::npos);
}

TEST_F(Spoken, TheTablesLastRecordIsAColumnAndTheNextOneTellsThatTheTableIsFull)
{
    win.form.MeasHead = 1498;
    win.form.MeasEnd = 1500;
    win.tune[1500].NoteCode = kQuarter;
    win.tune.CurNote = 1500;
    EXPECT_EQ(Cursor(), "Measure 1, column 2 of 2, string 6, no fret, quarter note");
    win.tune.CurNote = 1501;
    EXPECT_EQ(Cursor(), "Measure 1, the table is full");
}

TEST_F(Spoken, OnAHeadThereIsNoColumn)
{
    Type("5\r");
    for (int note : {0, 1}) {
        win.tune.CurNote = note;
        EXPECT_EQ(Cursor(), "Measure 1");
    }
}

TEST_F(Spoken, AnyStateGivesAText)
{
    for (int note : {-5, 0, 1, 1500, 1501, 32767})
        for (int head : {0, 1, 1500, 1501})
            for (int y : {-32768, 0, 76, 32767}) {
                win.tune.CurNote = note;
                win.form.MeasHead = head;
                win.form.CursorY = y;
                EXPECT_EQ(Cursor().find("Measure 1"), 0U);
            }
}

}  // namespace
}  // namespace quillon
