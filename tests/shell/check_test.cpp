#include "shell/check.h"

#include "midi/performance.h"
#include "notation/symbols.h"
#include "store/sign_codes.h"
#include "store/tune_file.h"
#include "support/faults.h"
#include "support/tunes.h"

#include <filesystem>

namespace quillon {
namespace {

using Lines = std::vector<std::string>;

Lines Texts(const std::vector<Finding>& findings)
{
    Lines lines;
    for (const Finding& finding : findings)
        lines.push_back(finding.Text());
    return lines;
}

class CheckTest : public testing::Test {
protected:
    Tune tune;
    int tempo = 120;

    NoteRecord& Head(int measure)
    {
        for (int i = 1; i <= tune.LastNote; ++i)
            if (tune[i].Measure == measure && tune[i].IsHead())
                return tune[i];
        throw std::out_of_range("no such measure");
    }

    /// Codes of BarCode, Slot(1) and so on of a measure's head.
    void Bar(int measure, std::string_view code) { Head(measure).BarCode = code; }
    void Sign(int measure, std::string_view code) { Head(measure).Slot(1) = code; }
    void Bracket(int measure, const std::string& text) { Head(measure).Slot(2) = text; }
    void Remark(int measure, const std::string& text) { Head(measure).Slot(3) = text; }

    Lines FileTexts() { return Texts(CheckTexts(TuneBytes(tune))); }
    Lines Records() { return Texts(CheckRecords(tune)); }
    Lines Signs() { return Texts(CheckSigns(tune)); }
    Lines Performance() { return Texts(CheckPerformance(tune)); }

    Lines Together(int atTempo) { return Texts(CheckTogether(tune, atTempo)); }

    /// 30 measures of eighths, each with a hammer-on on another string.
    void AddHammersBesideNotes(int string)
    {
        for (int i = 0; i < 30; ++i) {
            AddMeasure(tune);
            for (int eighth = 0; eighth < 8; ++eighth) {
                AddNote(tune, kEighth, 1, "3");
                tune[tune.LastNote].Slot(string) = "1-3";
            }
        }
    }

    Lines Pages()
    {
        PageSettings page;
        FixedTextMetrics metrics;
        PageView pages(metrics);
        return Texts(CheckPages(tune, page, pages, metrics));
    }

    /// Every check but the file's.
    Lines All()
    {
        PageSettings page;
        FixedTextMetrics metrics;
        PageView pages(metrics);
        return Texts(CheckTune(tune, page, pages, metrics, tempo));
    }
};

using Order = std::vector<int>;

/// A remark on paper. The ink of n characters goes from x + 16 to x + 80 n - 16, in twips.
Operation RemarkAt(double x, const std::string& text, double y = 1000)
{
    Operation remark;
    remark.Kind = Shape::Text;
    remark.Part = Role::Remark;
    remark.X1 = x;
    remark.Y1 = y;
    remark.Text = text;
    remark.TextFont.Size = 8;
    return remark;
}

/// What is found on a printed page of these remarks.
Lines OnPaper(const std::vector<Operation>& remarks)
{
    return Texts(CheckPaper({Drawing(remarks, false)}, FixedTextMetrics()));
}

// Clean tunes

TEST_F(CheckTest, AnEmptyTuneIsClean)
{
    EXPECT_EQ(All(), Lines());
    EXPECT_EQ(FileTexts(), Lines());
}

TEST_F(CheckTest, FullMeasuresAreClean)
{
    AddFullMeasures(tune, 20);
    EXPECT_EQ(All(), Lines());
    EXPECT_EQ(FileTexts(), Lines());
}

TEST_F(CheckTest, TheExamplesAreClean)
{
    const std::filesystem::path folder = QUILLON_EXAMPLES;
    int count = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        const std::string extension = file.path().extension().string();
        if (extension != ".gui" && extension != ".bjo" && extension != ".bss")
            continue;
        SCOPED_TRACE(file.path().string());
        const std::string bytes = ReadFileBytes(file.path().string());
        EXPECT_EQ(Texts(CheckTexts(bytes)), Lines());
        ItemReader reader(bytes);
        ReadTune(reader, tune);
        const InstrumentMode* mode = FindModeOfExtension(extension.substr(1));
        tune.NumStrings = mode->NumStrings;
        tempo = mode->Tempo;
        EXPECT_EQ(All(), Lines());
        ++count;
    }
    EXPECT_GE(count, 7);
}

// Texts

TEST_F(CheckTest, ADoubleQuoteInATextIsFoundWhereverItStands)
{
    for (const char* text : {"a \"b\" c", "\"", "\"a", "a\"", "\"a\"", "a\",\"b", "a\", b", ",\"",
                             "\",", " \"", "\"\""}) {
        SCOPED_TRACE(text);
        tune = {};
        AddFullMeasures(tune, 3);
        Remark(2, text);
        EXPECT_EQ(FileTexts(), Lines{"measure 2: a text contains a double quote"});
        Remark(2, "");
        tune[0].ChordText = text;
        EXPECT_EQ(FileTexts(), Lines{"the title, a credit or a font contains a double quote"});
        tune[0].ChordText.clear();
        tune[12].ChordText = text;
        EXPECT_EQ(FileTexts(), Lines{"measure 3: a text contains a double quote"});
    }
}

TEST_F(CheckTest, TwoTextsWhereOneIsDueAreFoundOnEachLineOfARecord)
{
    AddFullMeasures(tune, 3);
    for (int slot = 1; slot <= kStringSlots; ++slot) {
        tune[7].Slot(slot) = "a\",\"b";
        EXPECT_EQ(FileTexts(), Lines{"measure 2: a text contains a double quote"}) << slot;
        tune[7].Slot(slot).clear();
    }
    EXPECT_EQ(FileTexts(), Lines());
}

TEST_F(CheckTest, ADoubleQuoteForAHandIsFound)
{
    AddFullMeasures(tune, 1);
    tune[3].RightHand = '"';
    EXPECT_EQ(FileTexts(), Lines{"measure 1: a text contains a double quote"});
}

TEST_F(CheckTest, OtherCharactersAreNoMatter)
{
    AddFullMeasures(tune, 2);
    Remark(1, "a, 'b', c;\\ ,");
    tune[0].ChordText = ", ";
    tune[3].RightHand = ',';
    EXPECT_EQ(FileTexts(), Lines());
}

TEST(CheckTexts, AnEmptyFileIsAFinding)
{
    EXPECT_EQ(Texts(CheckTexts("")), Lines{"the file is empty"});
}

TEST(CheckTexts, AFileThatEndsWithoutALineEndIsClean)
{
    Tune tune;
    AddFullMeasures(tune, 1);
    const std::string bytes = TuneBytes(tune);
    EXPECT_EQ(CheckTexts(bytes.substr(0, bytes.size() - 2)).size(), 0U);
    EXPECT_EQ(CheckTexts(bytes.substr(0, bytes.size() - 3)).size(), 0U);
}

TEST(CheckTexts, InAFileWithALineTooFewOnlyTheQuotesThemselvesCount)
{
    Tune tune;
    AddFullMeasures(tune, 3);
    tune[6].Slot(3) = "a \"b\"";
    std::string bytes = TuneBytes(tune);
    bytes.erase(0, bytes.find('\n') + 1);
    EXPECT_EQ(Texts(CheckTexts(bytes)), Lines{"a text contains a double quote"});
}

TEST(CheckTexts, TheFirstLineOfTheFileAndOfARecordCountToo)
{
    Tune tune;
    AddFullMeasures(tune, 1);
    std::string bytes = TuneBytes(tune);
    bytes.replace(bytes.rfind("1,7,"), 1, "1\"");
    EXPECT_EQ(Texts(CheckTexts(bytes)), Lines{"measure 1: a text contains a double quote"});
    bytes = TuneBytes(tune);
    bytes.replace(bytes.find("1,999"), 1, "99999999999\"");
    EXPECT_EQ(Texts(CheckTexts(bytes)), Lines{"a text contains a double quote"});
    EXPECT_EQ(Texts(CheckTexts("0\"\r\n")),
              Lines{"the title, a credit or a font contains a double quote"});
}

TEST(CheckTexts, ALineOfNumbersWithOneTooManyIsFound)
{
    Tune tune;
    AddFullMeasures(tune, 1);
    for (int line = 9; line < 12; ++line) {  // the first three of record 1
        std::string bytes = TuneBytes(tune);
        std::size_t end = 0;
        for (int i = 0; i <= line; ++i)
            end = bytes.find("\r\n", end) + 2;
        bytes.insert(end - 2, ",1");
        EXPECT_EQ(Texts(CheckTexts(bytes)), Lines{"measure 1: a text contains a double quote"})
            << line;
    }
}

TEST(CheckTexts, LineEndsMayBeAnyOfThree)
{
    EXPECT_EQ(CheckTexts("0,0,0\n0,0,0,0\r0,\"\",\" \",\" \",\"x\"\r\n\"\"\n").size(), 0U);
    EXPECT_EQ(CheckTexts("0,0,0\n0,0,0,0\r0,\"\",\" \",\" \",\"x\"\"\r\n\"\"\n").size(), 1U);
}

// Records

TEST_F(CheckTest, AMeasureThatIsMissingIsFound)
{
    AddFullMeasures(tune, 2);
    tune.LastMeas = 3;
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Records(), Lines{"measure 4: comes after measure 2"});
}

TEST_F(CheckTest, MeasuresThatStandTheWrongWayRoundAreFound)
{
    AddFullMeasures(tune, 3);
    for (int i = 6; i <= 10; ++i)
        std::swap(tune[i], tune[i + 5]);
    EXPECT_EQ(Records(),
              (Lines{"measure 3: comes after measure 1", "measure 2: comes after measure 3"}));
}

TEST_F(CheckTest, ATuneBeginsWithMeasure1)
{
    tune.LastMeas = 1;
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Records(), Lines{"measure 2: comes first instead of measure 1"});
}

TEST_F(CheckTest, AMeasureWithoutAHeadIsFound)
{
    AddFullMeasures(tune, 2);
    tune[6].NoteCode = kQuarter;
    EXPECT_EQ(Records(), Lines{"measure 2: does not begin with a head record"});
}

TEST_F(CheckTest, ASecondHeadIsFound)
{
    AddFullMeasures(tune, 2);
    tune[8].NoteCode = kHead;
    EXPECT_EQ(Records(),
              (Lines{"measure 2: has 1 beat instead of 4", "measure 2: has a second head record"}));
}

TEST_F(CheckTest, ARecordOfNoMeasureIsFound)
{
    AddFullMeasures(tune, 1);
    tune[++tune.LastNote].NoteCode = kQuarter;
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Records(), Lines{"record 6 belongs to no measure"});
}

TEST_F(CheckTest, AMeasureThatDoesNotAddUpSaysHowManyBeatsItHas)
{
    AddFullMeasures(tune, 3);
    tune[3].NoteCode = kDottedQuarter;
    EXPECT_EQ(Records(), Lines{"measure 1: has 4.5 beats instead of 4"});
    tune[3].NoteCode = kEighthRest;
    EXPECT_EQ(Records(), Lines{"measure 1: has 3.5 beats instead of 4"});
    tune[3].NoteCode = kTripletQuarter;
    EXPECT_EQ(Records(), Lines{"measure 1: has 3.67 beats instead of 4"});
    tune[3].NoteCode = kQuarterRest;
    EXPECT_EQ(Records(), Lines());
}

TEST_F(CheckTest, OnlyTheLastMeasureMayBeShort)
{
    AddFullMeasures(tune, 2);
    --tune.LastNote;
    EXPECT_EQ(Records(), Lines());
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Records(), Lines{"measure 2: has 3 beats instead of 4"});
}

TEST_F(CheckTest, TheLastMeasureMayNotBeLong)
{
    AddFullMeasures(tune, 1);
    AddNote(tune, kEighth, 1, "0");
    EXPECT_EQ(Records(), Lines{"measure 1: has 4.5 beats instead of 4"});
}

TEST_F(CheckTest, ALowerFigureOtherThan4CountsAs8)
{
    for (int unit : {8, 2}) {
        SCOPED_TRACE(unit);
        tune = {};
        AddMeasure(tune, 3, unit);
        for (int i = 0; i < 3; ++i)
            AddNote(tune, kEighth, 1, "0");
        EXPECT_EQ(Records(), Lines());
        AddNote(tune, kEighth, 1, "0");
        EXPECT_EQ(Records(), Lines{"measure 1: has 4 beats instead of 3"});
    }
}

TEST_F(CheckTest, AFretAboveTheHighestIsFound)
{
    AddFullMeasures(tune, 2);
    for (const char* cell : {"24", "0", "x", "(12)", "1-2-4", "10-24", "024", "5^", "-", ">7<"}) {
        SCOPED_TRACE(cell);
        tune[8].Slot(4) = cell;
        EXPECT_EQ(Records(), Lines());
    }
    for (const auto& [cell, fret] : std::map<std::string, std::string>{
             {"25",   "25"  },
             {"(30)", "30"  },
             {"7-77", "77"  },
             {"240",  "240" },
             {"0025", "0025"}
    }) {
        tune[8].Slot(4) = cell;
        EXPECT_EQ(Records(), Lines{"measure 2: fret " + fret + " on string 4 is above 24"});
    }
}

TEST_F(CheckTest, AFretOfAnyLengthIsRead)
{
    AddFullMeasures(tune, 1);
    tune[2].Slot(1) = std::string(500, '9');
    EXPECT_EQ(Records().size(), 1U);
}

TEST_F(CheckTest, TwoWrongFretsInACellAreTwoFindings)
{
    AddFullMeasures(tune, 1);
    tune[2].Slot(1) = "25-26";
    EXPECT_EQ(Records(), (Lines{"measure 1: fret 25 on string 1 is above 24",
                                "measure 1: fret 26 on string 1 is above 24"}));
}

TEST_F(CheckTest, AStringThatTheInstrumentHasNotIsFound)
{
    AddFullMeasures(tune, 1);
    tune[2].Slot(5) = "3";
    EXPECT_EQ(Records(), Lines());
    tune.NumStrings = 4;
    EXPECT_EQ(Records(), Lines{"measure 1: string 5 is not among the instrument's 4"});
}

TEST_F(CheckTest, TheTextsOfAHeadAreNoFrets)
{
    AddFullMeasures(tune, 1);
    Sign(1, kSign);
    Remark(1, "As in 1999");
    EXPECT_EQ(Records(), Lines());
}

// Repeats and signs

TEST_F(CheckTest, ARepeatStartWantsARepeatSign)
{
    AddFullMeasures(tune, 6);
    Bar(2, kRepeatStart);
    EXPECT_EQ(Signs(), Lines{"measure 2: begins a repeat that no repeat sign ends"});
    Bar(4, kRepeatStart);
    Bar(5, kRepeatEnd);
    EXPECT_EQ(Signs(), Lines{"measure 2: begins a repeat that no repeat sign ends"});
    Bar(3, kRepeatEnd);
    EXPECT_EQ(All(), Lines());
}

TEST_F(CheckTest, TheFirstRepeatMayBeginWithTheTune)
{
    AddFullMeasures(tune, 6);
    Bar(3, kRepeatEnd);
    EXPECT_EQ(All(), Lines());
    Bar(5, kRepeatEnd);
    EXPECT_EQ(Signs(), Lines{"measure 5: ends a repeat that no repeat start begins"});
    Bar(4, kRepeatStart);
    EXPECT_EQ(All(), Lines());
}

TEST_F(CheckTest, AnEndingIsOverWithItsRepeatSign)
{
    AddFullMeasures(tune, 6);
    Bracket(2, "1.");
    Bar(3, kRepeatEnd);
    Bar(5, kRepeatEnd);
    EXPECT_EQ(Signs(), Lines{"measure 5: ends a repeat that no repeat start begins"});
    Bracket(5, "1.");
    EXPECT_EQ(Signs(), Lines());
}

TEST_F(CheckTest, ALastMeasureOfAHeadAloneCountsToo)
{
    AddFullMeasures(tune, 2);
    AddMeasure(tune);
    Bar(3, kRepeatStart);
    Sign(3, kDs);
    EXPECT_EQ(Signs(), (Lines{"measure 3: begins a repeat that no repeat sign ends",
                              "measure 3: has a D.S. but no Sign before it"}));
    Sign(3, kCoda);
    EXPECT_EQ(Performance(), Lines{"measure 3: the Coda is never reached"});
}

TEST_F(CheckTest, EndingsShareARepeatStart)
{
    AddFullMeasures(tune, 8);
    Bar(2, kRepeatStart);
    Bracket(4, "1.");
    Bar(4, kRepeatEnd);
    Bracket(5, "2.");
    Bar(5, kRepeatEnd);
    Bracket(6, "3.");
    EXPECT_EQ(All(), Lines());
    EXPECT_EQ(MeasureOrder(tune), (Order{1, 2, 3, 4, 2, 3, 5, 2, 3, 6, 7, 8}));
}

TEST_F(CheckTest, DsWantsASignBeforeIt)
{
    AddFullMeasures(tune, 8);
    Sign(4, kDsAlFine);
    Sign(3, kFine);
    EXPECT_EQ(Signs(), Lines{"measure 4: has a D.S. but no Sign before it"});
    Sign(5, kSign);
    EXPECT_EQ(Signs(), Lines{"measure 4: has a D.S. but no Sign before it"});
    Sign(2, kSign);
    EXPECT_EQ(All(), Lines());
}

TEST_F(CheckTest, APlainDsWantsASignTooAndDcWantsNone)
{
    AddFullMeasures(tune, 3);
    Sign(2, kDs);
    EXPECT_EQ(Signs(), Lines{"measure 2: has a D.S. but no Sign before it"});
    Sign(2, kDc);
    EXPECT_EQ(Signs(), Lines());
}

// Performance

TEST_F(CheckTest, ASecondEndingWithoutARepeatIsNeverReached)
{
    AddFullMeasures(tune, 4);
    Bracket(2, "1");
    Bracket(3, "2");
    EXPECT_EQ(Performance(), Lines{"measure 3: ending 2 is never reached"});
    Bar(2, kRepeatEnd);
    EXPECT_EQ(All(), Lines());
}

TEST_F(CheckTest, AnEndingForAPassThatHasOneAlreadyIsNeverReached)
{
    AddFullMeasures(tune, 5);
    Bracket(2, "1");
    Bar(2, kRepeatEnd);
    Bracket(3, "1");
    Bracket(4, "2");
    EXPECT_EQ(Performance(), Lines{"measure 3: ending 1 is never reached"});
    EXPECT_EQ(MeasureOrder(tune), (Order{1, 2, 1, 4, 5}));
}

TEST_F(CheckTest, TheBracketOfAMeasureAfterAnEmptyOneIsNeverReached)
{
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddFullMeasures(tune, 2);
    Bracket(3, "1");
    EXPECT_EQ(Performance(), Lines{"measure 3: ending 1 is never reached"});
    EXPECT_EQ(MeasureOrder(tune), (Order{1, 2, 3, 4}));
}

TEST_F(CheckTest, ARepeatSignOnTheLastEndingStopsThePerformance)
{
    AddFullMeasures(tune, 4);
    Bracket(2, "1");
    Bar(2, kRepeatEnd);
    Bracket(3, "2");
    Bar(3, kRepeatEnd);
    EXPECT_EQ(Performance(), Lines{"No ending for pass 3 follows measure 2."});
    EXPECT_FAULT(MeasureOrder(tune), SubscriptOutOfRange);
}

TEST_F(CheckTest, ACodaIsReachedFromARemarkAtLeastAMeasureBeforeIt)
{
    AddFullMeasures(tune, 7);
    Sign(6, kCoda);
    EXPECT_EQ(Performance(), Lines{"measure 6: the Coda is never reached"});
    Sign(4, kDcAlCoda);
    Remark(2, "/To Coda");
    EXPECT_EQ(All(), Lines());
    EXPECT_EQ(MeasureOrder(tune), (Order{1, 2, 3, 4, 1, 2, 6, 7}));
    Sign(6, "");
    Sign(3, kCoda);
    EXPECT_EQ(Performance(),
              (Lines{"No Coda follows measure 3.", "measure 3: the Coda is never reached"}));
}

TEST_F(CheckTest, ACodaInTheFirstMeasureIsNeverReached)
{
    AddFullMeasures(tune, 3);
    Sign(1, kCoda);
    EXPECT_EQ(Performance(), Lines{"measure 1: the Coda is never reached"});
}

TEST_F(CheckTest, AFineIsReachedAfterASignAlFine)
{
    AddFullMeasures(tune, 5);
    Sign(3, kFine);
    EXPECT_EQ(Performance(), Lines{"measure 3: the Fine is never reached"});
    Sign(5, kDcAlFine);
    EXPECT_EQ(All(), Lines());
    EXPECT_EQ(MeasureOrder(tune), (Order{1, 2, 3, 4, 5, 1, 2, 3}));
    Sign(4, kFine);
    EXPECT_EQ(Performance(), Lines{"measure 4: the Fine is never reached"});
}

TEST_F(CheckTest, AFineAfterTheJumpIsNeverReachedAndTheJumpNeverEnds)
{
    AddFullMeasures(tune, 5);
    Sign(3, kDcAlFine);
    Sign(4, kFine);
    EXPECT_EQ(Performance(), (Lines{"The repeats and signs of this tune never come to an end.",
                                    "measure 4: the Fine is never reached"}));
    EXPECT_THROW(MeasureOrder(tune), NeverEnding);
}

TEST_F(CheckTest, AFretThatNoSoundHasDoesNotKeepTheOrderFromBeingTold)
{
    AddFullMeasures(tune, 2);
    tune[2].Slot(1) = "99999";
    EXPECT_EQ(Performance(), Lines());
    EXPECT_EQ(MeasureOrder(tune), (Order{1, 2}));
}

TEST_F(CheckTest, ABracketPastAnyNumberIsAFindingAndNoMore)
{
    AddFullMeasures(tune, 2);
    Bracket(1, "1e999");
    EXPECT_EQ(Signs(), Lines{"the repeats cannot be read: run-time error 6: overflow"});
    EXPECT_FALSE(Performance().empty());
}

// Pages

TEST_F(CheckTest, AMeasureTooWideForALineIsFoundOnScreenAndPaper)
{
    AddFullMeasures(tune, 2);
    AddMeasure(tune, 16);
    for (int i = 0; i < 16; ++i)
        AddNote(tune, kQuarter, 1, "10-12-10");
    EXPECT_EQ(Pages(), (Lines{"measure 3: is too wide for a line of the page view",
                              "measure 3: is too wide for a printed line"}));
    tune.LastNote = tune.LastNote - 8;
    EXPECT_EQ(Pages(), Lines());
}

TEST_F(CheckTest, ATenthPageIsFound)
{
    AddFullMeasures(tune, 199);
    EXPECT_EQ(Pages(), Lines());
    for (int measure = 2; measure <= 199; ++measure)
        Head(measure).Slot(6) = kLineBreak;
    EXPECT_EQ(Pages(), Lines{"has more than nine pages"});
}

TEST_F(CheckTest, ATitleThatRunsOffThePaperIsFound)
{
    AddFullMeasures(tune, 3);
    tune[0].ChordText = std::string(40, 'M');
    EXPECT_EQ(Pages(), Lines());
    tune[0].ChordText = std::string(100, 'M');
    EXPECT_EQ(Pages(), Lines{"page 1: the title \"" + tune[0].ChordText + "\" runs off the paper"});
}

TEST_F(CheckTest, ARemarkThatRunsIntoTheNextIsFound)
{
    AddFullMeasures(tune, 8);
    Remark(2, "slowly");
    Remark(3, "with feeling");
    EXPECT_EQ(Pages(), Lines());
    const std::string longest = "slowly, and as if nobody listened";
    Remark(2, longest);
    EXPECT_EQ(Pages(), Lines{"page 1: the remark \"with feeling\" runs into the remark \"" +
                             longest + "\""});
    Remark(3, "");
    Sign(3, kDcAlFine);
    EXPECT_EQ(Pages(), Lines{"page 1: the remark \"D.C. Al Fine\" runs into the remark \"" +
                             longest + "\""});
}

TEST(CheckPaper, TextsMayGoUpToTheEdgesOfThePaper)
{
    EXPECT_EQ(OnPaper({RemarkAt(-16, "ab"), RemarkAt(kPageWidth - 144, "cd")}), Lines());
    EXPECT_EQ(OnPaper({RemarkAt(-17, "ab")}),
              Lines{"page 1: the remark \"ab\" runs off the paper"});
    EXPECT_EQ(OnPaper({RemarkAt(kPageWidth - 143, "cd")}),
              Lines{"page 1: the remark \"cd\" runs off the paper"});
}

TEST(CheckPaper, TextsInARowMayTouchEachOther)
{
    for (double apart : {128, -128})
        EXPECT_EQ(OnPaper({RemarkAt(1000, "ab"), RemarkAt(1000 + apart, "cd")}), Lines());
    for (double apart : {127, -127}) {
        EXPECT_EQ(OnPaper({RemarkAt(1000, "ab"), RemarkAt(1000 + apart, "cd")}),
                  Lines{"page 1: the remark \"cd\" runs into the remark \"ab\""});
        EXPECT_EQ(OnPaper({RemarkAt(1000, "ab"), RemarkAt(1000 + apart, "cd", 1001)}), Lines());
    }
}

TEST_F(CheckTest, AnEmptyPageAtTheEndIsFound)
{
    AddFullMeasures(tune, 3);
    int measures = 3;
    while (Pages().empty() && measures < 60)
        AddFullMeasures(tune, 1), ++measures;
    EXPECT_EQ(Pages(), Lines{"the last printed page is empty"});
    for (int i = 0; i < 8; ++i)
        AddFullMeasures(tune, 1);
    EXPECT_EQ(Pages(), Lines());
}

// What sounds together

TEST_F(CheckTest, StringsThatDriftApartAreFoundWhereTheyAreHeardToDoSo)
{
    AddHammersBesideNotes(2);
    EXPECT_EQ(Together(130),
              Lines{"measure 2: from here on the strings drift apart at a tempo of 130; multiples "
                    "of 24, such as 120, keep them together"});
    EXPECT_EQ(Together(132), Lines());  // halves of an eighth have 33 ticks
    EXPECT_EQ(Together(120), Lines());
    tune.LastNote = 9;  // the first measure, in which nobody hears it
    EXPECT_EQ(Together(130), Lines());
}

// At a tempo of 110, 30 milliseconds are six ticks, and a sixteenth of 27 ticks loses one tick when
// it is halved.
TEST_F(CheckTest, NobodyHearsADriftOf30Milliseconds)
{
    AddMeasure(tune);
    for (int i = 0; i < 6; ++i)
        AddNote(tune, kSixteenth, 1, "3").Slot(2) = "1-3";
    AddNote(tune, kQuarter, 1, "3").Slot(2) = "1";
    EXPECT_EQ(Together(110), Lines());
    tune[tune.LastNote].NoteCode = kSixteenth;
    tune[tune.LastNote].Slot(2) = "1-3";
    AddNote(tune, kQuarter, 1, "3").Slot(2) = "1";
    EXPECT_EQ(Together(110).size(), 1U);
}

TEST_F(CheckTest, TheTempoThatIsRecommendedIsNeverOutOfRange)
{
    AddHammersBesideNotes(2);
    EXPECT_TRUE(Together(299).at(0).ends_with("such as 288, keep them together"));
    EXPECT_TRUE(Together(323).at(0).ends_with("such as 288, keep them together"));
    EXPECT_TRUE(Together(31).at(0).ends_with("such as 48, keep them together"));
}

TEST_F(CheckTest, TheLastStringDriftsAsTheOthersDo)
{
    AddHammersBesideNotes(6);
    EXPECT_EQ(Together(130).size(), 1U);
}

TEST_F(CheckTest, WhatCannotBePlayedDoesNotDrift)
{
    AddFullMeasures(tune, 3);
    Bar(1, kRepeatEnd);
    Bracket(2, "3");
    tune[2].Slot(2) = "99999";
    EXPECT_EQ(Together(130), Lines());
}

TEST_F(CheckTest, TheWholeCheckGoesFromTheRecordsToThePaper)
{
    AddHammersBesideNotes(2);
    Head(2).Beats = 3;
    Bar(3, kRepeatStart);
    Sign(4, kFine);
    tune[0].ChordText = std::string(100, 'M');
    tempo = 130;
    const Lines found = All();
    ASSERT_EQ(found.size(), 6U);
    EXPECT_EQ(found[0], "measure 2: has 4 beats instead of 3");
    EXPECT_EQ(found[1], "measure 3: begins a repeat that no repeat sign ends");
    EXPECT_EQ(found[2], "measure 4: the Fine is never reached");
    EXPECT_TRUE(found[3].starts_with("measure 2: from here on the strings drift apart"));
    EXPECT_TRUE(found[4].ends_with("runs off the paper"));
    EXPECT_EQ(found[5], "the last printed page is empty");
}

TEST(OrderInRuns, JoinsMeasuresThatFollowEachOther)
{
    EXPECT_EQ(OrderInRuns({}), "");
    EXPECT_EQ(OrderInRuns({1}), "1");
    EXPECT_EQ(OrderInRuns({1, 2, 3, 4, 2, 3, 5}), "1-4, 2-3, 5");
    EXPECT_EQ(OrderInRuns({3, 3, 2, 1}), "3, 3, 2, 1");
}

}  // namespace
}  // namespace quillon
