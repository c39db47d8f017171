#include "store/tune_file.h"
#include "support/desk.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

namespace quillon {
namespace {

const char* const kIncompatible =
    "File is incompatible.  See the trouble shooting \r\n"
    "section in your manual for possible solutions\r\n"
    "\r\n"
    "You may need to eliminate the use of quote marks in your title or remarks.";

class Files : public Desk {
protected:
    Files() { Start(); }

    /// Writes a tune of `measures` full measures.
    std::string WriteTune(const std::string& name, int measures)
    {
        Tune tune;
        AddFullMeasures(tune, measures);
        WriteFileBytes(folder.Path(name), TuneBytes(tune));
        return folder.Path(name);
    }

    /// Opening the file shows the incompatible-file box and ends the program.
    void ExpectIncompatible(const std::string& bytes)
    {
        const std::string path = folder.Path("broken.gui");
        WriteFileBytes(path, bytes);
        dialogs.Shown.clear();
        EXPECT_FAULT(Open(path), ObjectRequired);
        EXPECT_FALSE(system.WaitCursor);
        ASSERT_EQ(dialogs.Shown.size(), 1U);
        EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Stop);
        EXPECT_EQ(dialogs.Shown[0].Title, "");
        EXPECT_EQ(dialogs.Shown[0].Text, kIncompatible);
    }

    static std::string FullTableBytes()
    {
        Tune tune;
        AddFullMeasures(tune, 300);
        return TuneBytes(tune);
    }

    static std::string RecordBytesOf(const Tune& tune, int i) { return RecordBytes(tune, i, i); }

    std::string Staff() const { return win.view.StaffBox.Picture().Log(); }

    /// What the pages and the captions hold once they have been used, with nothing to save.
    void LeaveTraces()
    {
        win.pages.mnuLargeview();
        win.pages.picPage1MouseDown(1, 10, 10);
        win.pages.PageMax = 3;
        win.pages.vsbPage = 700;
        win.form.cmdNextCaption = "OK";
        win.form.cmdPreviousCaption = "Cancel";
        win.form.Saved = SavedState::Saved;
    }

    void ExpectNoTraces() const
    {
        EXPECT_FALSE(win.pages.LargeView);
        EXPECT_EQ(win.pages.ShownPage, 0);
        EXPECT_EQ(win.pages.MarqueeOn, 0);
        EXPECT_EQ(win.pages.vsbPage, 0);
        EXPECT_EQ(win.form.cmdNextCaption, "Next");
        EXPECT_EQ(win.form.cmdPreviousCaption, "Previous");
    }
};

TEST_F(Files, AnEmptyTuneSavesAsExactlyTheNineLinesOfTheHeader)
{
    SaveAs(folder.Path("empty.gui"));
    EXPECT_EQ(ReadFileBytes(folder.Path("empty.gui")), TuneBytes(Tune()));
}

TEST_F(Files, DroppedFileOpensWithoutADialog)
{
    win.OpenDropped(WriteTune("tune.gui", 3));
    EXPECT_TRUE(dialogs.FileDialogs.empty());
    EXPECT_EQ(win.tune.FileName, folder.Path("tune.gui"));
    EXPECT_EQ(win.tune.LastNote, 15);
    EXPECT_TRUE(win.form.mnuSaveEnabled);
}

TEST_F(Files, DroppedFileAsksToSaveFirst)
{
    const std::string path = WriteTune("tune.gui", 3);
    Type("5");
    dialogs.YesNo = {true};  // and the save dialog is cancelled
    win.OpenDropped(path);
    EXPECT_EQ(win.tune.FileName, "");
    EXPECT_EQ(win.tune[2].Slot(6), "5");
    win.OpenDropped(path);  // No
    EXPECT_EQ(win.tune.LastNote, 15);
}

TEST_F(Files, OpenShowsMeasure1AndLaysThePagesOut)
{
    Open(WriteTune("tune.gui", 3));
    EXPECT_EQ(win.tune.LastNote, 15);
    EXPECT_EQ(win.tune.LastMeas, 3);
    EXPECT_EQ(win.tune.CurMeas, 1);
    EXPECT_EQ(win.tune.CurNote, 2);
    EXPECT_EQ(win.form.EntryState, EntryState::Review);
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    EXPECT_TRUE(win.form.mnuSaveEnabled);
    EXPECT_FALSE(system.WaitCursor);
    EXPECT_TRUE(system.HasWaited);
    EXPECT_TRUE(win.pages.Page(0).Visible);
    EXPECT_FALSE(win.pages.Page(0).Surface.Picture().Operations().empty());
    EXPECT_EQ(win.form.Focus, Control::StaffBox);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(Files, TheOpenDialogFollowsTheInstrument)
{
    win.mnuOpen();
    win.mnuBanjo();
    win.mnuOpen();
    win.mnuMandolin();
    win.mnuOpen();
    EXPECT_EQ(dialogs.FileDialogs,
              (std::vector<std::string>{"open|Guitar Files (*.gui)|*.gui|All Files (*.*)|*.*|gui",
                                        "open|Banjo Files (*.bjo)|*.bjo|All Files (*.*)|*.*|bjo",
                                        "open|Bass Files (*.bss)|*.bss|All Files (*.*)|*.*|bss"}));
}

TEST_F(Files, TheSaveDialogOffersTheNameAndTheBareExtensionAsItsFilter)
{
    SaveAs(folder.Path("a.gui"));
    win.mnuSaveAs();
    EXPECT_EQ(
        dialogs.FileDialogs,
        (std::vector<std::string>{"save||gui|gui", "save|" + folder.Path("a.gui") + "|gui|gui"}));
}

TEST_F(Files, OpenThenSaveGivesTheSameBytesForAThousandTunes)
{
    std::mt19937 random(7);
    const std::vector<int> codes = NotesAndRests();
    const char* texts[] = {"0", "12", "5>", "7^", "3-5", "x", "/"};
    for (int i = 0; i < 1000; ++i) {
        Tune tune;
        tune[0].ChordText = "Title, of tune";
        for (auto m = 1 + random() % 3; m > 0; --m) {
            AddMeasure(tune, 2 + static_cast<int>(random() % 3), random() % 2 ? 4 : 8);
            tune[tune.LastNote].Slot(3) = random() % 4 ? "" : "Slowly, now";
            for (auto n = 1 + random() % 5; n > 0; --n) {
                const int code = codes[random() % std::size(codes)];
                NoteRecord& note = AddNote(tune, code);
                if (IsNoteValue(code))
                    note.Slot(1 + static_cast<int>(random() % 6)) = texts[random() % 7];
            }
        }
        // fresh names: emptying a file is slow on many file systems
        const std::string number = std::to_string(i);
        WriteFileBytes("given" + number, TuneBytes(tune));
        Open("given" + number);  // derives the fields of measure 1
        SaveAs("first" + number);
        Open("first" + number);
        SaveAs("second" + number);
        ASSERT_EQ(ReadFileBytes("second" + number), ReadFileBytes("first" + number)) << number;
    }
}

TEST_F(Files, ATuneShownOnceIsSavedByteForByteAsItWasOpened)
{
    const std::string path = WriteTune("tune.gui", 5);
    const std::string bytes = ReadFileBytes(path);
    Open(path);
    win.mnuSave();
    EXPECT_EQ(ReadFileBytes(path), bytes);
}

TEST_F(Files, ABanjoFileOpenedInGuitarModeLoadsUnchanged)
{
    Tune tune;
    AddFullMeasures(tune, 2);
    tune[0].ChordText = "Reel";
    tune[8].Slot(5) = "0";
    tune[9].LeftHand = 'T';
    const std::string path = folder.Path("tune.bjo");
    WriteFileBytes(path, TuneBytes(tune));
    Open(path);
    EXPECT_EQ(Table(), TableText(tune));
    EXPECT_EQ(win.tune.NumStrings, 6);
    EXPECT_EQ(win.tune.LastMeas, 2);
    EXPECT_EQ(win.form.Caption, "LYRANO Tablature Editor for Guitar");
}

TEST_F(Files, SlotsAboveTheInstrumentAreKeptThroughASave)
{
    Tune tune;
    AddMeasure(tune);
    AddNote(tune, kWhole, 6, "3").Slot(5) = "2";
    const std::string path = folder.Path("six.gui");
    WriteFileBytes(path, TuneBytes(tune));
    win.mnuMandolin();
    Open(path);
    win.mnuSave();
    EXPECT_NE(ReadFileBytes(path).find("\"2\"\r\n\"3\"\r\n"), std::string::npos);
}

TEST_F(Files, ATitleWithAQuoteSavesWithoutComplaintAndComesBackShortened)
{
    Type("1\r");
    win.tune[0].ChordText = "The \"old\" tune";
    SaveAs(folder.Path("tune.gui"));
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    Open(folder.Path("tune.gui"));
    EXPECT_EQ(win.tune[0].ChordText, "The ");
}

TEST_F(Files, ATitleWithAQuoteAndACommaSavesWithoutComplaintAndFailsOnLoading)
{
    Type("1\r");
    win.tune[0].ChordText = "The \"old, tune";
    SaveAs(folder.Path("tune.gui"));
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    ExpectIncompatible(ReadFileBytes(folder.Path("tune.gui")));
}

TEST_F(Files, AQuotedTextWhereANumberIsDueReadsAs0AndTheLoadGoesOn)
{
    const std::string path = WriteTune("tune.gui", 2);
    std::string bytes = ReadFileBytes(path);
    // Of measure 2, which is not shown yet, so that nothing is derived again.
    bytes.replace(bytes.find("2,7,48"), 6, "2,7,\"48\"");
    bytes.replace(bytes.rfind("0,4,4,4"), 7, "0,4,\"4\",4");
    WriteFileBytes(path, bytes);
    Open(path);
    EXPECT_EQ(win.tune.LastNote, 10);
    EXPECT_EQ(win.tune[7].XPos, 0);
    EXPECT_EQ(win.tune[7].Slot(2), "2");
    EXPECT_EQ(win.tune[8].XPos, 72);
    EXPECT_EQ(win.tune[10].BeatUnit, 4);
    EXPECT_EQ(win.tune[10].Beats, 0);
    EXPECT_EQ(win.tune[10].Spacing, 4);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(Files, ARecordWithMeasure0IsLostOnSavingAndTheNextLoadClosesTheGap)
{
    const std::string path = WriteTune("tune.gui", 2);
    Open(path);
    win.tune[3].Measure = 0;
    win.mnuSave();
    Open(path);
    EXPECT_EQ(win.tune.LastNote, 9);
    EXPECT_EQ(win.tune[4].Slot(2), "1");
    EXPECT_TRUE(win.tune[5].IsHead());
}

TEST_F(Files, AFileEndingAfterLine5OfARecordIsIncompatibleAndNoPartialTune)
{
    const std::string bytes = ReadFileBytes(WriteTune("tune.gui", 1));
    std::size_t end = 0;
    for (int line = 0; line < 9 + 5; ++line)
        end = bytes.find('\n', end) + 1;
    ExpectIncompatible(bytes.substr(0, end));
}

TEST_F(Files, AFileOfMoreThan64MegabytesIsIncompatible)
{
    Tune tune;
    AddFullMeasures(tune, 1);
    tune[0].ChordText.assign(64 << 20, 'x');
    ExpectIncompatible(TuneBytes(tune));
}

TEST_F(Files, APipeIsNotFound)
{
    const std::string path = folder.Path("pipe.gui");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    Open(path);
    ASSERT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(dialogs.Shown[0].Text, "File Not Found");
}

TEST_F(Files, AnIncompatibleFileBlanksTheViewWithTheFiguresInForceBeforeTheStateIsReset)
{
    win.form.CurBeats = 3;
    win.form.CurBeatUnit = 8;
    ExpectIncompatible("1,");
    const std::string log = win.view.StaffBox.Picture().Log();
    EXPECT_NE(log.find("\" 3 \""), std::string::npos) << log;
    EXPECT_NE(log.find("\" 8 \""), std::string::npos) << log;
    EXPECT_EQ(win.form.CurBeats, 4);
    EXPECT_EQ(win.form.CurBeatUnit, 4);
    EXPECT_EQ(win.form.CursorY, 84);
}

TEST_F(Files, TheLastLineMayOrMayNotEndInCrLf)
{
    const std::string path = WriteTune("tune.gui", 2);
    std::string bytes = ReadFileBytes(path);
    bytes.resize(bytes.size() - 2);
    WriteFileBytes(path, bytes);
    Open(path);
    EXPECT_EQ(win.tune.LastNote, 10);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(Files, EveryTruncationOpensOrIsIncompatible)
{
    const std::string bytes = ReadFileBytes(WriteTune("tune.gui", 1)).substr(0, 260);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const std::string path = folder.Path("cut" + std::to_string(length));
        WriteFileBytes(path, bytes.substr(0, length));
        win.form.Saved = SavedState::Saved;
        dialogs.Shown.clear();
        try {
            Open(path);
            EXPECT_TRUE(dialogs.Shown.empty()) << length;
        } catch (const Fault& fault) {
            EXPECT_EQ(fault.Number(), Error::ObjectRequired) << length;
            ASSERT_EQ(dialogs.Shown.size(), 1U) << length;
            EXPECT_EQ(dialogs.Shown[0].Text, kIncompatible);
        }
    }
}

TEST_F(Files, The1502ndRecordIsIncompatible)
{
    const std::string bytes = FullTableBytes();
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 1501 * 9);
    const std::string path = folder.Path("full.gui");
    WriteFileBytes(path, bytes);
    Open(path);
    EXPECT_EQ(win.tune.LastNote, 1500);
    EXPECT_EQ(win.tune.LastMeas, 300);
    ExpectIncompatible(bytes + RecordBytesOf(win.tune, 1500));
}

TEST_F(Files, ANumberPast16BitsIsIncompatible)
{
    std::string bytes = ReadFileBytes(WriteTune("tune.gui", 1));
    bytes.replace(bytes.find("1,7,48"), 6, "1,7,40000");
    ExpectIncompatible(bytes);
}

TEST_F(Files, AnIncompatibleFileLeavesThisState)
{
    Type("1\r1\r");
    win.form.Saved = SavedState::Saved;
    win.form.CurValue = kEighth;
    win.editor.SetToolbarValue(kEighth);
    win.cmdRefresh();
    const std::string bytes = ReadFileBytes(WriteTune("tune.gui", 1));
    ExpectIncompatible(bytes.substr(0, bytes.size() - 10));
    EXPECT_EQ(win.tune.CurMeas, 1);
    EXPECT_EQ(win.tune.LastMeas, 0);
    EXPECT_EQ(win.tune.CurNote, 2);
    EXPECT_EQ(win.tune.LastNote, 0);
    EXPECT_EQ(win.form.MeasHead, 1);
    EXPECT_EQ(win.form.MeasEnd, 0);
    EXPECT_EQ(win.form.CurValue, kQuarter);
    EXPECT_EQ(win.form.Toolbar1, kQuarter);
    EXPECT_EQ(win.form.MeasCapacity, 48);
    EXPECT_EQ(win.form.MeasFill, 0);
    EXPECT_EQ(win.form.EntryState, EntryState::Append);
    EXPECT_EQ(win.form.InputMode, InputMode::Fret);
    EXPECT_EQ(win.form.CursorX, 48);
    EXPECT_EQ(win.form.CursorY, 84) << "not 76";
    EXPECT_TRUE(win.pages.Page(0).Surface.Picture().Operations().empty());
    EXPECT_EQ(win.tune[2].Slot(2), "1") << "what was read stays";
    EXPECT_EQ(win.tune.FileName, folder.Path("broken.gui"));
}

TEST_F(Files, AnIncompatibleFileOfFiveStringsPutsTheCursorAt74)
{
    win.mnuBanjo();
    ExpectIncompatible("1");
    EXPECT_EQ(win.form.CursorY, 74);
}

TEST_F(Files, ADirectoryOrAFileThatCannotBeReadIsNotFound)
{
    std::vector<std::string> paths{folder.Path(), folder.Path("missing"), "/proc/self/mem", ""};
    for (const std::string& path : paths) {
        dialogs.Shown.clear();
        Open(path);
        ASSERT_EQ(dialogs.Shown.size(), 1U) << path;
        EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Stop);
        EXPECT_EQ(dialogs.Shown[0].Title, "");
        EXPECT_EQ(dialogs.Shown[0].Text, "File Not Found");
        EXPECT_EQ(win.tune.FileName, path) << "holds the bad path already";
    }
}

TEST_F(Files, AMissingFileLeavesTheTuneInPlaceButMarkedAsSaved)
{
    Type("1\r");
    dialogs.YesNo = {false};
    const std::string table = Table();
    Open(folder.Path("missing.gui"));
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
}

TEST_F(Files, ACancelledOpenLeavesTableAndNameAndUnsavedEditsMarkedAsSaved)
{
    SaveAs(folder.Path("a.gui"));
    Type("1\r");
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
    const std::string table = Table();
    win.mnuOpen();  // No to the question, then cancel
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(win.tune.FileName, folder.Path("a.gui"));
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
}

TEST_F(Files, OpenEndsTheInsertedMeasuresCaptions)
{
    Type("1\r");
    win.editor.mnuInsMeas();
    win.form.Saved = SavedState::Saved;
    win.mnuOpen();
    EXPECT_EQ(win.form.cmdNextCaption, "Next");
    EXPECT_EQ(win.form.cmdPreviousCaption, "Previous");
}

TEST_F(Files, AnEmptyFileOpensAsATuneWithoutMeasures)
{
    WriteFileBytes(folder.Path("empty.gui"), "");
    Open(folder.Path("empty.gui"));
    EXPECT_EQ(win.tune.LastNote, 0);
    EXPECT_EQ(win.tune.CurNote, 2);
    EXPECT_EQ(win.form.EntryState, EntryState::Append);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(Files, FontsComeFromTheHeaderWhereItHasThem)
{
    Tune tune;
    AddFullMeasures(tune, 1);
    tune[0].NoteCode = 28;
    tune[0].Slot(3) = "Courier";
    tune[0].Slot(5) = "14.5";
    tune[0].Slot(6) = "Times";
    WriteFileBytes("a.gui", TuneBytes(tune));
    Open("a.gui");
    EXPECT_EQ(win.page.BodyFontName, "Times");
    EXPECT_EQ(win.page.BodyFontSize, 14.5F);
    EXPECT_EQ(win.page.TitleFontName, "Courier");
    EXPECT_EQ(win.page.FormFontName, "Courier") << "taken last";
    EXPECT_EQ(win.page.TitleFontSize, 28);
    Open(WriteTune("plain.gui", 1));
    EXPECT_EQ(win.page.BodyFontName, "Times") << "an empty field leaves what is in force";
    EXPECT_EQ(win.page.TitleFontSize, 28);
}

TEST_F(Files, ABodySizeInTheHeaderBeyondASingleIsAnOverflowWithoutTheIncompatibleBox)
{
    for (const char* size : {"1e39", "1e999", "-1e39", "4e38"}) {
        Tune tune;
        AddFullMeasures(tune, 1);
        tune[0].Slot(5) = size;
        WriteFileBytes("a.gui", TuneBytes(tune));
        EXPECT_FAULT(Open("a.gui"), Overflow);
        EXPECT_TRUE(dialogs.Shown.empty()) << size;
        EXPECT_EQ(win.tune.LastNote, 5) << "the tune has been read";
    }
}

TEST_F(Files, AFontThatCannotBeSetFallsBackToArialWithoutAMessage)
{
    system.MissingFonts = {"Nowhere", "Nothing"};
    Tune tune;
    AddFullMeasures(tune, 1);
    tune[0].Slot(3) = "Nowhere";
    tune[0].Slot(6) = "Nothing";
    WriteFileBytes("a.gui", TuneBytes(tune));
    win.page.BodyFontName = win.page.TitleFontName = "Times";
    Open("a.gui");
    EXPECT_EQ(win.tune[0].Slot(6), "Arial");
    EXPECT_EQ(win.page.BodyFontName, "Arial");
    EXPECT_EQ(win.tune[0].Slot(3), "Arial");
    EXPECT_EQ(win.page.TitleFontName, "Arial");
    EXPECT_EQ(win.tune.LastMeas, 1);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(Files, SaveDuringAnInsertionWritesOnlyTheRecordsInTheTable)
{
    const std::string path = WriteTune("tune.gui", 3);
    Open(path);
    win.editor.cmdNext();
    win.editor.mnuInsMeas();
    win.mnuSave();
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    const std::string bytes = ReadFileBytes(path);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), (1 + 5) * 9);
}

TEST_F(Files, SaveAsDoesNothingAtAllWhileAMeasureIsInserted)
{
    Type("1\r");
    win.editor.mnuInsMeas();
    const std::string state = State();
    SaveAs(folder.Path("a.gui"));
    EXPECT_TRUE(dialogs.FileDialogs.empty());
    EXPECT_EQ(State(), state);
    EXPECT_FALSE(std::filesystem::exists(folder.Path("a.gui")));
}

TEST_F(Files, SaveThatFailsIsARunTimeError)
{
    Open(WriteTune("tune.gui", 1));
    win.form.Saved = SavedState::Unsaved;
    win.tune.FileName = folder.Path("missing/tune.gui");
    EXPECT_FAULT(win.mnuSave(), PathFileAccess);
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
}

TEST_F(Files, SaveThatFailsLeavesATuneWithoutChangesUnsavedToo)
{
    Open(WriteTune("tune.gui", 1));
    win.tune.FileName = "/dev/full";
    EXPECT_FAULT(win.mnuSave(), PathFileAccess);
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
}

TEST_F(Files, SaveAsThatFailsEndsSilently)
{
    Type("1\r");
    SaveAs(folder.Path("missing/tune.gui"));
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_EQ(win.tune.FileName, folder.Path("missing/tune.gui"));
}

TEST_F(Files, SaveAsThatIsCancelledLeavesEverything)
{
    Type("1\r");
    const std::string state = State();
    win.mnuSaveAs();
    EXPECT_EQ(State(), state);
    EXPECT_FALSE(win.form.mnuSaveEnabled);
}

TEST_F(Files, SaveAsUnderNoNameWritesNoFileAndCountsAsSaved)
{
    Type("1\r");
    SaveAs("");
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    EXPECT_TRUE(win.form.mnuSaveEnabled);
}

TEST_F(Files, NewDisablesSaveAndForgetsTheName)
{
    SaveAs(folder.Path("a.gui"));
    EXPECT_TRUE(win.form.mnuSaveEnabled);
    win.mnuNew();
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    EXPECT_EQ(win.tune.FileName, "");
    EXPECT_TRUE(win.pages.Page(0).Surface.Picture().Operations().empty());
}

TEST_F(Files, NewSetsBackWhateverTheLastTuneLeft)
{
    win.mnuNew();
    const std::string state = State(), table = Table(), picture = Staff();
    Open(WriteTune("tune.gui", 3));
    win.editor.cmdNext();
    LeaveTraces();
    win.form.Timer1Enabled = false;
    win.mnuNew();
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(Staff(), picture);
    ExpectNoTraces();
}

TEST_F(Files, OpenSetsBackWhateverTheLastTuneLeft)
{
    const std::string small = WriteTune("small.gui", 1);
    Open(small);
    const std::string state = State(), table = Table(), picture = Staff();
    Open(WriteTune("tune.gui", 3));
    win.editor.cmdNext();
    LeaveTraces();
    Open(small);
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(Staff(), picture);
    EXPECT_EQ(win.pages.PageMax, 0);
    EXPECT_TRUE(win.pages.Page(1).Surface.Picture().Operations().empty());
    EXPECT_FALSE(system.WaitCursor);
    ExpectNoTraces();
}

TEST_F(Files, AppendIsNoFileOperation)
{
    Open(WriteTune("tune.gui", 2));
    win.editor.mnuAppend();
    EXPECT_EQ(win.tune.CurMeas, 3);
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
    EXPECT_EQ(dialogs.FileDialogs.size(), 1U);
}

}  // namespace
}  // namespace quillon
