#include "shell/rescued.h"
#include "store/tune_file.h"
#include "support/desk.h"

#include <string_view>

namespace quillon {
namespace {

class Rescue : public Desk {
protected:
    Rescue() { Start(); }

    void OpenFullMeasures(int count)
    {
        Tune tune;
        AddFullMeasures(tune, count);
        WriteFileBytes("tune.gui", TuneBytes(tune));
        Open("tune.gui");
        win.editor.cmdNext();
    }

    /// What is read back from the rescued bytes.
    Tune Rescued()
    {
        Tune tune;
        ItemReader reader(RescueBytes(win.tune, win.form));
        ReadTune(reader, tune);
        return tune;
    }

    /// The fret of each measure's first note, in order.
    static std::string Frets(const Tune& tune)
    {
        std::string frets;
        for (int i = 1; i < tune.LastNote; ++i)
            if (tune[i].IsHead())
                frets += std::to_string(int{tune[i].Measure}) + ":" + tune[i + 1].Slot(2) + " ";
        return frets;
    }
};

TEST_F(Rescue, CopyHoldsTheTailThatAnInsertionHasParked)
{
    OpenFullMeasures(3);
    win.editor.mnuInsMeas();
    Type("9\r");
    const Tune tune = Rescued();
    EXPECT_EQ(Frets(tune), "1:1 2:9 3:2 4:3 ");
    EXPECT_EQ(tune.LastNote, 5 + 2 + 10);
}

TEST_F(Rescue, CopyHoldsAParkedTextThatItsScratchFileCannotHold)
{
    OpenFullMeasures(3);
    win.tune[8].ChordText = "a\", \"b";
    win.editor.mnuInsMeas();
    const std::string bytes = RescueBytes(win.tune, win.form);
    EXPECT_NE(bytes.find("\"a\", \"b\"\r\n"), std::string::npos);
    EXPECT_NE(bytes.find("\r\n3,7,48\r\n"), std::string::npos);
}

TEST_F(Rescue, CopyHoldsATableThatHasRunFull)
{
    for (int notes = 1490; notes <= kLastRecord; ++notes) {
        SCOPED_TRACE(notes);
        win.tune.Table.Clear();
        win.tune.LastNote = win.tune.LastMeas = 0;
        OpenFullMeasures(298);
        for (int i = win.tune.LastNote; i < notes; ++i)
            AddNote(win.tune, kQuarter, 1, "5");
        try {
            win.editor.mnuAppend();
            Type("9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r9\r");
        } catch (const Fault&) {
        }
        EXPECT_NO_THROW(RescueBytes(win.tune, win.form));
    }
}

TEST_F(Rescue, CopyHoldsNoTailOnceItIsBack)
{
    OpenFullMeasures(3);
    win.editor.mnuInsMeas();
    win.editor.cmdPrevious();
    EXPECT_EQ(RescueBytes(win.tune, win.form), TuneBytes(win.tune));
    win.editor.mnuInsMeas();
    Type("9\r");
    win.editor.cmdNext();
    EXPECT_EQ(RescueBytes(win.tune, win.form), TuneBytes(win.tune));
}

TEST_F(Rescue, CopyHoldsTheTailThoughEditsCountedTheTableBelowNothing)
{
    OpenFullMeasures(1);
    win.editor.mnuInsMeas();
    win.tune.LastNote = -1;
    EXPECT_NE(RescueBytes(win.tune, win.form).find("\r\n1,7,48\r\n"), std::string::npos);
}

TEST_F(Rescue, CopyIsNamedAfterTheTuneButNotAfterACopy)
{
    const auto nameOfCopy = [&](const char* file) {
        win.tune.FileName = file;
        const std::filesystem::path path = WriteRescueCopy(win.tune, win.form, ".");
        std::filesystem::remove(path);
        return path.filename().string();
    };
    EXPECT_TRUE(nameOfCopy("reel.gui").starts_with("reel"));
    EXPECT_TRUE(nameOfCopy("Rescue-me.gui").starts_with("Rescue-me"));
    EXPECT_TRUE(nameOfCopy("Rescue-20260101-120000.gui").starts_with("Untitled"));
    EXPECT_TRUE(nameOfCopy("Rescue-01.gui").starts_with("Untitled"));
    EXPECT_TRUE(nameOfCopy("Rescue-99.gui").starts_with("Untitled"));
    EXPECT_TRUE(nameOfCopy("reel-Rescue-20260101-120000.gui").starts_with("reel."));
}

}  // namespace
}  // namespace quillon
