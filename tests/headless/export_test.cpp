#include "headless/export.h"

#include "midi/midi_events.h"
#include "store/tune_file.h"
#include "support/faults.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

namespace quillon {
namespace {

class ExportTest : public testing::Test {
protected:
    ExportedTune Load(const std::string& name)
    {
        WriteFileBytes(name, TuneBytes(tune));
        return ExportedTune(name, options, metrics);
    }

    std::string Failure(const std::string& name)
    {
        try {
            ExportedTune(name, options, metrics);
        } catch (const ExportError& error) {
            return error.what();
        }
        return "none";
    }

    TemporaryDirectory folder;
    FixedTextMetrics metrics;
    ExportOptions options;
    Tune tune;
};

TEST_F(ExportTest, PagesAfterTheSixthHaveNoClearLine)
{
    AddFullMeasures(tune, 60);
    for (int i = 1; i <= tune.LastNote; i += 5)
        tune[i].Slot(6) = "NL";
    std::istringstream log(Load("long.gui").PageLog());
    std::vector<std::string> pages, clears;
    std::string page;
    for (std::string line; std::getline(log, line);) {
        if (line.starts_with("page "))
            pages.push_back(page = line);
        else if (line == "clear")
            clears.push_back(page);
    }
    EXPECT_EQ(pages, (std::vector<std::string>{"page 1", "page 2", "page 3", "page 4", "page 5",
                                               "page 6", "page 7", "page 8", "page 9"}));
    EXPECT_EQ(clears, (std::vector<std::string>{"page 1", "page 2", "page 3", "page 4", "page 5",
                                                "page 6"}));
}

TEST_F(ExportTest, ATuneCanBeCutToSomeOfItsMeasures)
{
    AddFullMeasures(tune, 9);
    tune[0].ChordText = "Reel";
    tune[0].Slot(1) = "Someone";
    tune[5 * 5 + 1].Slot(6) = "NL";  // before measure 6
    ExportedTune cut = Load("a.gui");
    cut.Keep({4, 7});
    const Tune& kept = cut.Window().tune;
    EXPECT_EQ(kept.LastNote, 4 * 5);
    EXPECT_EQ(kept[1].Measure, 4);
    EXPECT_EQ(kept[4 * 5].Measure, 7);
    EXPECT_EQ(kept[4 * 5 + 1].Measure, 0);
    const std::string log = cut.PrintLog();
    EXPECT_EQ(log.find("Reel"), std::string::npos);
    EXPECT_EQ(log.find("Someone"), std::string::npos);
    std::size_t strings = 0;
    for (std::size_t at = 0; (at = log.find(" w=3\n", at)) != std::string::npos; ++at)
        ++strings;
    EXPECT_EQ(strings, 6U) << "one line";
}

TEST_F(ExportTest, MeasuresThatAreNotThereCannotBeKept)
{
    AddFullMeasures(tune, 9);
    ExportedTune cut = Load("a.gui");
    for (const MeasureRange& range : {
             MeasureRange{8, 10},
             MeasureRange{0, 2 }
    })
        EXPECT_THROW(cut.Keep(range), ExportError);
}

TEST_F(ExportTest, PracticeIsOfTheWholeTuneOrOfSomeMeasures)
{
    AddFullMeasures(tune, 4);
    options.Tempo = 120;
    ExportedTune loaded = Load("a.gui");
    const auto seconds = [&](const std::optional<MeasureRange>& measures,
                             const PracticeChoices& choices) {
        return TimedEventsOf(loaded.PracticeFile(options, measures, choices)).End;
    };
    EXPECT_DOUBLE_EQ(seconds({}, {}), 8);
    EXPECT_DOUBLE_EQ(seconds({}, {.Speed = 50, .CountIn = true}), 20);
    EXPECT_DOUBLE_EQ(seconds(MeasureRange{2, 3}, {.Turns = 3}), 12);
    EXPECT_THROW(seconds(MeasureRange{4, 5}, {}), std::runtime_error);
    tune = {};
    EXPECT_THROW(Load("a.gui").PracticeFile(options, {}, {}), std::runtime_error);
}

TEST_F(ExportTest, TheExtensionTellsTheStringsUnlessAnOptionDoes)
{
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Load("a.bjo").Window().tune.NumStrings, 5);
    EXPECT_EQ(Load("a.bss").Window().tune.NumStrings, 4);
    EXPECT_EQ(Load("a.BSS").Window().tune.NumStrings, 6);
    EXPECT_EQ(Load("bjo").Window().tune.NumStrings, 6) << "a name without an extension";
    options.Strings = 5;
    EXPECT_EQ(Load("a.gui").Window().tune.NumStrings, 5);
}

TEST_F(ExportTest, OptionsBeatTheHeaderWhichBeatsTheDefaults)
{
    AddFullMeasures(tune, 1);
    tune[0].Slot(5) = "12";
    tune[0].Slot(6) = "Serif";
    EXPECT_EQ(Load("a.gui").Window().page.BodyFontSize, 12);
    options.BodySize = 8.0F;
    ExportedTune exported = Load("a.gui");
    EXPECT_EQ(exported.Window().page.BodyFontSize, 8);
    EXPECT_EQ(exported.Window().page.BodyFontName, "Serif");
    EXPECT_EQ(exported.Window().page.StaveSpace, .75F);
}

TEST_F(ExportTest, FailuresAreToldInTheBoxesWordsOnOneLine)
{
    EXPECT_EQ(Failure("missing.gui"), "File Not Found");
    EXPECT_EQ(Failure("/dev/zero"), "File Not Found");
    WriteFileBytes("broken.gui", "1");
    EXPECT_EQ(Failure("broken.gui"),
              "File is incompatible.  See the trouble shooting section in your manual for "
              "possible solutions You may need to eliminate the use of quote marks in your title "
              "or remarks.");
}

TEST_F(ExportTest, AFailureBeforeTheFirstPrintedLineIsTold)
{
    AddFullMeasures(tune, 1);
    options.Right = -40.0F;
    EXPECT_FAULT(Load("a.gui").PrintLog(), Overflow);
    EXPECT_FAULT(Load("a.gui").Print(), Overflow);
}

TEST_F(ExportTest, AMeasureThatIsNotThereIsLoggedAsTheOneBefore)
{
    AddFullMeasures(tune, 3);
    for (int i = 6; i <= 10; ++i)
        tune[i].Measure = 7;
    const std::string log = Load("a.gui").MeasureLog();
    const auto rest = [&](const std::string& number) {
        const std::size_t start = log.find("measure " + number + " ") + 9 + number.size();
        return log.substr(start, log.find("measure ", start) - start);
    };
    EXPECT_TRUE(rest("2").starts_with("head=1 end=5 ")) << rest("2");
    EXPECT_TRUE(rest("3").starts_with("head=11 end=15 ")) << rest("3");
}

TEST_F(ExportTest, ABodySizeBeyondASingleIsAnOverflow)
{
    AddFullMeasures(tune, 1);
    tune[0].Slot(5) = "1e39";
    EXPECT_FAULT(Load("a.gui"), Overflow);
}

}  // namespace
}  // namespace quillon
