#include "midi/tuning_form.h"

#include "support/fakes.h"
#include "support/faults.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using Texts = std::vector<std::string>;

class TuningFormTest : public testing::Test {
protected:
    TuningFormTest()
    {
        system.Folder = folder.Path();
        guitar.Show();
        banjo.Show();
        bass.Show();
    }

    TemporaryDirectory folder;
    FakeSystem system;
    Tunings guitarTunings;
    Tunings banjoTunings;
    Tunings bassTunings;
    TuningForm guitar{kTuningForms[0], guitarTunings, system};
    TuningForm banjo{kTuningForms[1], banjoTunings, system};
    TuningForm bass{kTuningForms[2], bassTunings, system};

    static void Add(TuningForm& form, const std::string& name)
    {
        form.AddTitle = name;
        form.cmdAdd();
    }

    /// The form as it opens the next time.
    static void Reopen(TuningForm& form)
    {
        form.cmdExit();
        form.Show();
    }
};

TEST_F(TuningFormTest, AnInstrumentsFileIsMadeWhenItsFormIsOpened)
{
    std::filesystem::remove("Strings4.tun");
    Reopen(guitar);
    EXPECT_FALSE(std::filesystem::exists("Strings4.tun"));
    Reopen(bass);
    EXPECT_TRUE(std::filesystem::exists("Strings4.tun"));
}

TEST_F(TuningFormTest, OpensOnTheFilesFirstTuningWhateverIsActive)
{
    bassTunings.CurTuning = {1, 2, 3, 4, 5, 6};
    Reopen(bass);
    EXPECT_EQ(bass.Combo1, (Texts{"Mandolin", "Bass", "Tenor Banjo", "Plectrum Banjo", "Ukulele",
                                  "Baritone Uke"}));
    EXPECT_EQ(bass.Combo1Index, 0);
    EXPECT_EQ(bass.Text1, (Texts{"76", "69", "62", "55"}));
    EXPECT_EQ(bassTunings.CurTuning[0], 1);
}

TEST_F(TuningFormTest, ShowingAnOpenFormDoesNotReadTheFileAgain)
{
    Add(guitar, "Mine");
    guitar.Show();
    EXPECT_EQ(guitar.Combo1.size(), 5u);
}

TEST_F(TuningFormTest, SelectingATuningShowsItAndMakesItActive)
{
    banjoTunings.CurTuning[5] = 7;
    banjo.Combo1Click(2);
    EXPECT_EQ(banjo.Text1, (Texts{"62", "57", "54", "50", "66"}));
    EXPECT_EQ(banjoTunings.CurTuning, (std::array<Int16, 6>{62, 57, 54, 50, 66, 7}));
}

TEST_F(TuningFormTest, AddTakesTheNameAndTheRoundedNumbersOfTheBoxes)
{
    bass.Text1 = {"60.5", "", "x", " 7 7"};
    Add(bass, "Mine");
    EXPECT_EQ(bass.Combo1.back(), "Mine");
    EXPECT_EQ(bass.Combo1Index, 6);
    EXPECT_EQ(bassTunings[6].TuningName, "Mine");
    EXPECT_EQ(bassTunings.CurTuning, (std::array<Int16, 6>{60, 0, 0, 77, 0, 0}));
    EXPECT_EQ(bass.AddTitle, " ");
}

TEST_F(TuningFormTest, ANameWithALeadingBlankIsRefusedSilently)
{
    Add(guitar, " Mine");
    EXPECT_EQ(guitar.Combo1.size(), 4u);
    EXPECT_EQ(guitar.AddTitle, " ");
}

TEST_F(TuningFormTest, AnUntouchedNameAddsNothing)
{
    guitar.cmdAdd();
    EXPECT_EQ(guitar.Combo1.size(), 4u);
}

TEST_F(TuningFormTest, APitchBeyond16BitsIsAnOverflow)
{
    bass.Text1[0] = "40000";
    EXPECT_FAULT(Add(bass, "Mine"), Overflow);
}

TEST_F(TuningFormTest, A52ndTuningIsASubscriptFault)
{
    for (std::size_t i = bass.Combo1.size(); i < 51; ++i)
        Add(bass, "T" + std::to_string(i));
    EXPECT_FAULT(Add(bass, "one too many"), SubscriptOutOfRange);
}

TEST_F(TuningFormTest, DeletingFromAFullListIsASubscriptFault)
{
    for (std::size_t i = bass.Combo1.size(); i < 51; ++i)
        Add(bass, "T" + std::to_string(i));
    EXPECT_FAULT(bass.cmdDelete(), SubscriptOutOfRange);
}

TEST_F(TuningFormTest, AfterDeleteTheFirstTuningIsShownAndActive)
{
    banjo.Combo1Click(1);
    banjo.cmdDelete();
    EXPECT_EQ(banjo.Combo1, (Texts{"G Tuning", "D Tuning"}));
    EXPECT_EQ(banjo.Combo1Index, 0);
    EXPECT_EQ(banjo.Text1[0], "62");
    EXPECT_EQ(banjoTunings.CurTuning, (std::array<Int16, 6>{62, 59, 55, 50, 67, 0}));
    EXPECT_EQ(banjoTunings[1].TuningName, "D Tuning");
}

TEST_F(TuningFormTest, TheLastTuningCannotBeDeleted)
{
    banjo.cmdDelete();
    banjo.cmdDelete();
    banjo.cmdDelete();
    EXPECT_EQ(banjo.Combo1, Texts{"D Tuning"});
}

TEST_F(TuningFormTest, DefaultSwapsTheSelectedTuningWithTheFirst)
{
    bass.Combo1Click(2);
    bass.cmdDefault();
    EXPECT_EQ(bass.Combo1, (Texts{"Tenor Banjo", "Bass", "Mandolin", "Plectrum Banjo", "Ukulele",
                                  "Baritone Uke"}));
    EXPECT_EQ(bass.Combo1Index, 0);
    EXPECT_EQ(bassTunings.CurTuning[0], 69);
    EXPECT_EQ(bassTunings[6].TuningName, "Mandolin");  // scratch
}

TEST_F(TuningFormTest, DefaultOnTheFirstEntrySwapsItWithItself)
{
    const Texts before = bass.Combo1;
    bass.cmdDefault();
    EXPECT_EQ(bass.Combo1, before);
    EXPECT_EQ(bassTunings[0].TuningName, "Mandolin");
    EXPECT_EQ(bassTunings.CurTuning[0], 76);
}

TEST_F(TuningFormTest, ChangesReachTheFileOnlyBySave)
{
    bass.Combo1Click(4);
    bass.cmdDefault();
    Reopen(bass);
    EXPECT_EQ(bass.Combo1[0], "Mandolin");
    bass.Combo1Click(4);
    bass.cmdDefault();
    bass.cmdSave();
    EXPECT_TRUE(bass.Loaded);
    Reopen(bass);
    EXPECT_EQ(bass.Combo1[0], "Ukulele");
    EXPECT_EQ(bass.Combo1.size(), 6u);
    EXPECT_TRUE(ReadFileBytes("Strings4.tun").starts_with("\"Ukulele\",71,66,62,57\r\n\"Bass\""));
}

TEST_F(TuningFormTest, EnterInAPitchBoxAddsOnTheGuitarOnly)
{
    for (TuningForm* form : {&guitar, &banjo, &bass}) {
        const std::size_t before = form->Combo1.size();
        form->AddTitle = "Mine";
        form->Text1Enter();
        EXPECT_EQ(form->Combo1.size() - before, form == &guitar ? 1u : 0u);
    }
}

TEST_F(TuningFormTest, EnterInTheNameAddsAndOnTheGuitarGoesToSave)
{
    for (TuningForm* form : {&guitar, &banjo, &bass}) {
        const std::size_t before = form->Combo1.size();
        form->AddTitle = "Mine";
        form->AddTitleEnter();
        EXPECT_EQ(form->Combo1.size(), before + 1);
        EXPECT_EQ(form->cmdSaveFocused, form == &guitar);
    }
}

TEST_F(TuningFormTest, OnlyTheGuitarHasNoDefaultButton)
{
    EXPECT_FALSE(guitar.design.HasDefault);
    EXPECT_TRUE(banjo.design.HasDefault);
    EXPECT_TRUE(bass.design.HasDefault);
}

TEST_F(TuningFormTest, AFileWithoutTuningsSelectsNoneAndOneOfASingleTuningThat)
{
    WriteFileBytes("Strings4.tun", "");
    Reopen(bass);
    EXPECT_EQ(bass.Combo1, Texts{});
    EXPECT_EQ(bass.Combo1Index, -1);
    WriteFileBytes("Strings4.tun", "\"Mine\",1,2,3,4\r\n");
    Reopen(bass);
    EXPECT_EQ(bass.Combo1, Texts{"Mine"});
    EXPECT_EQ(bass.Combo1Index, 0);
}

TEST_F(TuningFormTest, TheNextOpeningGivesSaveTheFocusNoMore)
{
    Add(guitar, "Mine");
    guitar.AddTitleEnter();
    Reopen(guitar);
    EXPECT_FALSE(guitar.cmdSaveFocused);
}

}  // namespace
}  // namespace quillon
