// Keys and clicks on StaffBox, and the blinking cursor.

#include "editor/editor.h"

#include "notation/staff_sizes.h"

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

// Clicks, in points
constexpr int kSignatureEndX = 18;  // the time signature is left of it
constexpr int kEndOfNoteX = 18;     // how far a note extends to the right of its XPos

/// The characters that go into a string's slot.
constexpr std::string_view kFretCharacters = "0123456789-><xX^/()=";

/// What each value key changes CurValue to, by its current value; 0 leaves it unchanged.
struct ValueKeyRow {
    int plus;
    int dot;
    int triplet;
};

constexpr ValueKeyRow kValueKeys[] = {
    {0,          0,              0                },
    {kSixteenth, kDottedEighth,  kTripletSixteenth},
    {kEighth,    kDottedEighth,  kTripletSixteenth},
    {kEighth,    kDottedEighth,  kTripletEighth   },
    {kQuarter,   kDottedEighth,  kTripletEighth   },
    {kQuarter,   kDottedEighth,  kTripletEighth   },
    {kQuarter,   kDottedQuarter, kTripletQuarter  },
    {kSixteenth, kDottedQuarter, kTripletQuarter  },
    {kSixteenth, kDottedQuarter, kTripletQuarter  },
    {kQuarter,   kDottedQuarter, kHalf            },
    {kQuarter,   kDottedQuarter, kDottedHalf      },
    {kQuarter,   kDottedQuarter, kWhole           },
};
static_assert(std::size(kValueKeys) == kNoteValues + 1);

bool IsControl(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte < 32 || byte == 127;
}

}  // namespace

int Editor::PlayableStringUnderCursor() const
{
    const int s = StringAt(form.CursorY);
    return s < 1 || s > tune.NumStrings ? int{tune.NumStrings} : s;
}

// Toggles the cursor: an xor line, so drawing it again removes it.
void Editor::Timer1()
{
    form.CaretOn = ~form.CaretOn;
    view.StaffBox.DrawMode = PenMode::Xor;
    view.StaffBox.Line(form.CursorX, form.CursorY, form.CursorX, form.CursorY - 8);
    view.StaffBox.DrawMode = PenMode::Plain;
}

void Editor::HideCaret()
{
    if (form.CaretOn != 0)
        Timer1();
}

void Editor::StaffBoxKeyDown(int keyCode)
{
    HideCaret();
    if (form.InputMode == InputMode::Chord)
        return;
    switch (keyCode) {
    case kKeyBackspace:
        Backspace();
        break;
    case kKeyLeft:
        Left();
        break;
    case kKeyUp:
        MoveCursorBy(-8);
        if (form.CursorY < StringY(1))
            form.CursorY = StringY(tune.NumStrings);
        break;
    case kKeyRight:
        Right();
        break;
    case kKeyDown:
        MoveCursorBy(8);
        if (form.CursorY > StringY(tune.NumStrings))
            form.CursorY = StringY(1);
        break;
    case kKeyDelete:
        if (form.InputMode == InputMode::Fret) {
            form.Saved = SavedState::Unsaved;
            Current().Slot(StringAt(form.CursorY)).clear();
            view.RedrawMeasure();
        }
        break;
    default:
        break;
    }
}

void Editor::MoveCursorBy(int dy)
{
    form.CursorY += dy;
    if (Current().XPos > 0)
        form.CursorX = Current().XPos;
}

void Editor::Backspace()
{
    if (form.EntryState == EntryState::Review) {
        form.Saved = SavedState::Unsaved;
        Current().Slot(StringAt(form.CursorY)).clear();
        form.CursorX = Current().XPos;
        view.RedrawMeasure();
    } else if (form.EntryState == EntryState::Append) {
        if (tune.CurNote > form.MeasHead + 1 && Current().Measure == 0) {
            form.Saved = SavedState::Unsaved;
            --tune.CurNote;
            --tune.LastNote;
        }
        Current().Clear();
        --tune.CurNote;
        form.MeasEnd = tune.CurNote;
        view.RedrawMeasure();
        tune.CurNote = form.MeasEnd + 1;
        if (tune.CurNote != form.MeasHead + 1) {
            form.CursorX = EndOf(tune.CurNote - 1);
        } else {
            form.CursorX = kFirstNoteX;
            --form.MeasEnd;  // the measure is empty again
        }
    }
}

/// Presses the button of a note or rest; `buttonOfHalfRest` is the one that a half rest shows.
void Editor::ShowValueOf(int noteCode, int buttonOfHalfRest)
{
    if (noteCode < kEndOfNotes)
        SetToolbarValue(noteCode);
    else if (noteCode == kHalfRest)
        SetToolbarValue(buttonOfHalfRest);
    else if (const int button = ValueOf(noteCode))
        SetToolbarValue(button);
}

void Editor::CursorToFilledString()
{
    if (const int s = Current().HighestFilledSlot())
        form.CursorY = StringY(s);
}

void Editor::Left()
{
    if (tune.CurNote == form.MeasHead + 1)
        return;
    if (form.EntryState == EntryState::Append)
        form.EntryState = EntryState::Edit;
    HideCaret();
    --tune.CurNote;
    form.CursorX = Current().XPos;
    ShowValueOf(Current().NoteCode, kDottedQuarter);
    CursorToFilledString();
}

void Editor::Right()
{
    if (form.EntryState == EntryState::Append)
        return;
    if (form.EntryState == EntryState::Review && tune.CurNote + 1 > form.MeasEnd)
        return;
    HideCaret();
    if (form.EntryState == EntryState::Edit && tune.CurNote == tune.LastNote) {
        if (form.MeasFill < form.MeasCapacity) {
            form.CursorX = EndOf(tune.CurNote);
            ++tune.CurNote;
            form.EntryState = EntryState::Append;
        }
        return;
    }
    if (tune.CurNote < form.MeasEnd)
        ++tune.CurNote;
    ShowValueOf(Current().NoteCode, kHalf);
    CursorToFilledString();
    form.CursorX = Current().XPos;
}

void Editor::StaffBoxKeyPress(char character)
{
    form.Saved = SavedState::Unsaved;
    view.StaffBox.CurrentX = form.CursorX;
    view.StaffBox.CurrentY = form.CursorY;
    switch (form.InputMode) {
    case InputMode::Fret:
    case InputMode::Insert:
        FretKey(character);
        break;
    case InputMode::Chord:
        ChordKey(character);
        break;
    case InputMode::LeftHand:
    case InputMode::RightHand:
        HandKey(character);
        break;
    case InputMode::Bracket:
        BracketKey(character);
        break;
    default:
        break;
    }
}

void Editor::FretKey(char character)
{
    if (kFretCharacters.find(character) != std::string_view::npos) {
        EnterFret(character);
        return;
    }
    const ValueKeyRow row = IsNoteValue(form.CurValue) ? kValueKeys[form.CurValue] : ValueKeyRow{};
    switch (character) {
    case '+':
        SelectValue(row.plus);
        break;
    case '.':
        SelectValue(row.dot);
        break;
    case '*':
        if (form.CurValue < kHalf)
            SelectValue(row.triplet);
        break;
    case kKeyEnter:
        if (form.EntryState == EntryState::Append) {
            CommitNote();
        } else {
            form.CursorX = Current().XPos;
            view.RedrawMeasure();
        }
        break;
    default:
        break;
    }
}

void Editor::SelectValue(int value)
{
    if (value == 0)
        return;
    form.CurValue = value;
    SetToolbarValue(value);
}

void Editor::EnterFret(char character)
{
    const int s = PlayableStringUnderCursor();
    NoteRecord& note = Current();
    note.NoteCode = form.CurValue;
    note.Beats = form.CurBeats;
    note.BeatUnit = form.CurBeatUnit;
    if (form.EntryState == EntryState::Append) {
        form.MeasEnd = tune.CurNote;
        tune.LastNote = tune.CurNote;
    }
    form.Timer1Enabled = false;
    view.StaffBox.CurrentY = form.CursorY - 6;
    view.StaffBox.CurrentX = form.CursorX;
    if (form.CursorX == note.XPos)
        note.Slot(s) = character;  // the first character over an old text wipes it
    else
        note.Slot(s) += character;
    view.StaffBox.PrintLine({&character, 1}, Role::Figure);
    note.Measure = tune.CurMeas;
    if (note.XPos == 0)
        note.XPos = form.CursorX;
    form.CursorX += 6;
    form.Timer1Enabled = true;
}

/// Enter at the end of the tune: the record under the cursor becomes a note of the measure.
void Editor::CommitNote()
{
    NoteRecord& note = Current();
    form.CursorX -= 6 * Length(note.Slot(PlayableStringUnderCursor()));
    Int16 width = SpacingOf(form.CurValue);
    for (const std::string& slot : note.Slots)
        if (Length(slot) >= width)
            width = Length(slot) + 1;
    if (note.HighestFilledSlot() == 0)
        return;
    note.Measure = tune.CurMeas;
    note.NoteCode = form.CurValue;
    note.Spacing = width;
    note.Beats = form.CurBeats;
    note.BeatUnit = form.CurBeatUnit;
    form.MeasEnd = tune.CurNote;
    tune.LastMeas = tune.CurMeas;
    view.RedrawMeasure();
    tune.CurNote = form.MeasEnd;
    tune.LastNote = form.MeasEnd;
    if (form.MeasFill >= form.MeasCapacity) {
        // Full: the next Enter or Space presses cmdNext. The cursor stays on the last note.
        form.Timer1Enabled = false;
        SetFocus(Control::cmdNext);
    } else {
        ++tune.CurNote;
        form.CursorX += width * 6;
    }
}

void Editor::ChordKey(char character)
{
    if (character == kKeyEnter) {
        form.CursorY = form.SavedCursorY;
        form.CursorX = Current().XPos;
        if (form.MeasEnd < tune.CurNote)
            form.MeasEnd = tune.CurNote;
        form.InputMode = InputMode::Fret;
        view.RedrawMeasure();
    } else if (character == kKeyBackspace) {
        NoteRecord& note = Current();
        if (note.ChordText.empty())
            return;
        note.ChordText.pop_back();
        view.RedrawMeasure();
        view.StaffBox.PrintLineAt(note.XPos, 12, note.ChordText);
        form.CursorX = note.XPos + 10 * Length(note.ChordText);
    } else if (character >= 32 && character <= 126) {
        view.StaffBox.PrintLineAt(form.CursorX, 12, {&character, 1});
        Current().ChordText += character;
        form.CursorX += 10;
    }
}

void Editor::HandKey(char character)
{
    const bool left = form.InputMode == InputMode::LeftHand;
    if (character != kKeyEnter && character != kKeyBackspace) {
        if (IsControl(character))
            return;
        const int y = form.CursorY - (left ? 8 : 16);
        view.StaffBox.PrintLineAt(form.CursorX, y, {&character, 1}, Role::Fingering);
        (left ? Current().LeftHand : Current().RightHand) = character;
    }
    form.InputMode = InputMode::Fret;
    form.CursorY = form.SavedCursorY;
}

/// Only when StaffBox has the focus in bracket mode; as a rule txtRptBracket has it.
void Editor::BracketKey(char character)
{
    if (character == kKeyEnter) {
        form.CursorY = form.SavedCursorY;
        form.CursorX = Current().XPos;
        form.InputMode = InputMode::Fret;
        view.RedrawMeasure();
    } else if (!IsControl(character)) {
        view.StaffBox.PrintLineAt(form.CursorX, 6, {&character, 1});
        Head().Slot(2) += character;
        form.CursorX += 8;
    }
}

void Editor::txtRptBracketEnter()
{
    form.txtRptBracket.Enabled = false;
    Head().Slot(2) = form.txtRptBracket.Text;
    form.txtRptBracket.Visible = false;
    SetFocus(Control::StaffBox);
    form.InputMode = InputMode::Fret;
}

void Editor::mnuChord()
{
    if (form.InputMode == InputMode::Insert)
        return;
    form.SavedCursorY = form.CursorY;
    form.InputMode = InputMode::Chord;
    form.Saved = SavedState::Unsaved;
    if (!Current().ChordText.empty()) {
        Current().ChordText.clear();
        view.RedrawMeasure();
    }
    form.CursorY = 18;
    Current().XPos = form.CursorX;
}

/// A letter for a hand is asked for: the old one is gone at once. False while a measure is
/// inserted.
bool Editor::EnterHandMode(InputMode mode, char NoteRecord::*mark, int cursorY)
{
    if (form.InputMode == InputMode::Insert)
        return false;
    form.Saved = SavedState::Unsaved;
    if (form.InputMode == InputMode::Fret)
        form.SavedCursorY = form.CursorY;
    form.InputMode = mode;
    Current().*mark = ' ';
    view.RedrawMeasure();
    form.CursorY = cursorY;
    Current().XPos = form.CursorX;
    form.CursorX = Current().XPos + 6;
    return true;
}

void Editor::mnuLHEdit()
{
    EnterHandMode(InputMode::LeftHand, &NoteRecord::LeftHand, 68 + 8 * tune.NumStrings);
}

void Editor::mnuRHEdit()
{
    if (!EnterHandMode(InputMode::RightHand, &NoteRecord::RightHand, 44 + 10 * tune.NumStrings))
        return;
    view.StaffBox.CurrentX = form.CursorX;
    view.StaffBox.CurrentY = form.CursorY;
}

void Editor::Paint()
{
    HideCaret();
    view.ClearStaff();
    form.CursorX = kFirstNoteX;
    form.CursorY = StringY(tune.NumStrings);
}

/// A click left of an empty measure's first note changes the time signature when it is on one of
/// the figures.
bool Editor::ClickOnTimeSignature(double y)
{
    const ViewSizes& sizes = SizesOf(tune.NumStrings).View;
    if (y >= sizes.LowerClickFrom && y < sizes.LowerClickTo) {
        const bool toQuarters = form.CurBeatUnit == 8;
        form.CurBeatUnit = toQuarters ? 4 : 8;
        form.CurBeats = toQuarters ? 4 : 3;
    } else if (y >= sizes.UpperClickFrom && y < sizes.UpperClickTo) {
        if (form.CurBeatUnit == 8)
            form.CurBeats = form.CurBeats > 9 ? 3 : form.CurBeats + 3;
        else if (form.CurBeatUnit == 4)
            form.CurBeats = form.CurBeats > 5 ? 2 : form.CurBeats + 1;
    } else {
        return false;
    }
    Head().Beats = form.CurBeats;
    Head().BeatUnit = form.CurBeatUnit;
    Paint();
    return true;
}

void Editor::StaffBoxMouseDown(double x, double y)
{
    if (form.InputMode == InputMode::Bracket) {
        Head().Slot(2) = form.txtRptBracket.Text;
        form.txtRptBracket.Enabled = false;
        SetFocus(Control::StaffBox);
        form.InputMode = InputMode::Fret;
    }
    HideCaret();
    if (x < kSignatureEndX && form.MeasHead > form.MeasEnd && ClickOnTimeSignature(y))
        return;
    if (form.InputMode != InputMode::Insert)
        form.InputMode = InputMode::Fret;
    HideCaret();
    if (form.MeasEnd < form.MeasHead) {
        form.CursorX = kFirstNoteX;
    } else {
        if (x > tune[form.MeasEnd].XPos + kEndOfNoteX)
            ClickAfterLastNote();
        else
            ClickOnNote(x);
        TakeValueOfNote();
    }
    int lineY = StringY(1);
    while (lineY < StringY(kStringSlots) && y > lineY)
        lineY += 8;
    form.CursorY = std::min(lineY, StringY(tune.NumStrings));
}

/// To the free end of the tune if the measure is its last and has room, else to the last note.
void Editor::ClickAfterLastNote()
{
    if (form.MeasEnd == tune.LastNote && form.MeasFill < form.MeasCapacity) {
        form.EntryState = EntryState::Append;
        form.CursorX = EndOf(form.MeasEnd);
        tune.CurNote = tune.LastNote + 1;
        return;
    }
    if (form.EntryState == EntryState::Append)
        form.EntryState = EntryState::Edit;
    form.CursorX = tune[form.MeasEnd].XPos;
    tune.CurNote = form.MeasEnd;
}

/// To the last note that begins left of the click; a click before the first goes to it.
void Editor::ClickOnNote(double x)
{
    const int first = form.MeasHead + 1;
    tune.CurNote = first;
    if (x < tune[first].XPos) {
        form.CursorX = kFirstNoteX;
    } else {
        form.CursorX = tune[first].XPos;
        for (int i = first; i < form.MeasEnd; ++i) {
            if (x > tune[i + 1].XPos) {
                tune.CurNote = i + 1;
                form.CursorX = tune[i + 1].XPos;
            }
        }
    }
    if (form.EntryState == EntryState::Append && tune.CurNote < tune.LastNote)
        form.EntryState = EntryState::Edit;
}

void Editor::TakeValueOfNote()
{
    if (const int value = ValueOf(Current().NoteCode)) {
        form.CurValue = value;
        SetToolbarValue(value);
    } else {
        form.CurValue = form.Toolbar1;
    }
}

}  // namespace quillon
