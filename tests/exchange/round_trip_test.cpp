#include "exchange/abc_writer.h"
#include "exchange/musicxml_reader.h"
#include "exchange/musicxml_writer.h"

#include "music_text.h"
#include "store/tune_file.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace quillon {
namespace {

ExportChoices ChoicesOf(const Tune& tune, Repeats reader)
{
    ExportChoices choices;
    choices.Tunings = DefaultTunings(tune.NumStrings);
    choices.Reader = reader;
    return choices;
}

/// The table without what the display derives, and without the header's fonts.
std::string Kept(const Tune& tune)
{
    std::string text;
    for (int i = 1; i <= tune.LastNote; ++i) {
        NoteRecord record = tune[i];
        record.XPos = record.Spacing = record.BeamCode = 0;
        text += RecordText(record) + "\n";
    }
    return tune[0].ChordText + "\n" + tune[0].Slot(1) + "\n" + tune[0].Slot(2) + "\n" +
           tune[0].Slot(4) + "\n" + text;
}

/// What comes back; what was written out does not.
std::string ThroughMusicXml(Tune& tune)
{
    Notices notices;
    const Music music = MusicOf(tune, ChoicesOf(tune, Repeats::Jumps), notices);
    if (!notices.Lines().empty())
        return Kept(tune);
    const FoundTune found = ReadMusicXml(WriteMusicXml(music, notices)).at(0);
    return Kept(*MadeTune(found.Tune, tune.NumStrings).tune);
}

const int kNoteCodes[] = {kSixteenth, kEighth, kDottedEighth, kQuarter, kDottedQuarter, kHalf};

/// Notes and rests as a player writes them: ties go to the same fret, marks stand where they mean
/// something.
class Player {
public:
    Player(Tune& theTune, unsigned seed) : tune(theTune), random(seed) {}

    void Play()
    {
        tune.NumStrings = 4 + Upto(2);
        tune[0].ChordText = "Tune & <title>";
        tune[0].Slot(1) = "first";
        tune[0].Slot(2) = "second";
        tune[0].Slot(4) = std::to_string(Upto(2));
        const int sections = 1 + Upto(2);
        for (int section = 0; section < sections; ++section)
            PlaySection(section);
    }

private:
    int Upto(int highest) { return static_cast<int>(random() % (highest + 1)); }

    void PlaySection(int section)
    {
        const bool repeated = Upto(2) > 0;
        const bool endings = repeated && Upto(1) > 0;
        PlayMeasure().BarCode = repeated && section > 0 ? kRepeatStart : std::string_view();
        PlayMeasure();
        NoteRecord& last = PlayMeasure();
        last.BarCode = repeated ? kRepeatEnd : kDoubleBar;
        if (endings) {
            last.Slot(2) = "1";
            NoteRecord& second = PlayMeasure();
            second.Slot(2) = "2nd time";
            second.BarCode = kDoubleBar;
        }
    }

    NoteRecord& PlayMeasure()
    {
        NoteRecord& head = AddMeasure(tune, 3 + Upto(1), Upto(1) > 0 ? 4 : 8);
        if (Upto(4) == 0)
            head.Slot(3) = "remark";
        if (Upto(4) == 0)
            head.Slot(6) = kLineBreak;
        for (int i = Upto(6); i >= 0; --i)
            PlayNotes();
        return head;
    }

    void PlayNotes()
    {
        const int code = kNoteCodes[Upto(5)];
        // The first frets of a banjo's short string would be taken for the neck's.
        const int string = 1 + Upto(std::min<int>(tune.NumStrings, 4) - 1);
        const std::string fret = std::to_string(6 + Upto(9));
        switch (Upto(9)) {
        case 0:
            AddNote(tune, RestCodeOf(kQuarter));
            return;
        case 1:
            AddNote(tune, code, string, fret + "^");
            AddNote(tune, code, string, fret);
            return;
        case 2:
            AddNote(tune, code, string, fret + "^");
            AddNote(tune, code, string, "5");
            return;
        case 3:
            AddNote(tune, code, string, fret + (Upto(1) > 0 ? "-3" : "=20"));
            return;
        case 4:
            for (int i = 0; i < 3; ++i)
                AddNote(tune, kTripletEighth, string, fret);
            return;
        case 5: {
            constexpr const char* kMarks[] = {"(7)", "x", "/", "7>", "7<"};
            AddNote(tune, code, string, kMarks[Upto(4)]);
            return;
        }
        default: {
            NoteRecord& note = AddNote(tune, code, string, fret);
            note.Slot(1 + string % tune.NumStrings) = "7";
            note.ChordText = Upto(1) > 0 ? "Am7" : "odd \"one\" & <two>";
            std::erase(note.ChordText, '"');
            note.LeftHand = '2';
            note.RightHand = 'm';
            return;
        }
        }
    }

    Tune& tune;
    std::mt19937 random;
};

TEST(RoundTripTest, MusicXmlGivesTheTableBack)
{
    for (unsigned seed = 1; seed <= 200; ++seed) {
        Tune tune;
        Player(tune, seed).Play();
        ASSERT_EQ(ThroughMusicXml(tune), Kept(tune)) << "seed " << seed;
    }
}

TEST(RoundTripTest, RemarksAreNeverTakenForWhatATuneFollows)
{
    for (const char* remark :
         {"To Coda", "/To Coda", "/TO CODA", "D.C. al Fine", "Fine", "D.S.", "/D.S.", "Coda"}) {
        Tune tune;
        AddMeasure(tune).Slot(3) = remark;
        AddNote(tune, kWhole, 1, "3");
        EXPECT_EQ(ThroughMusicXml(tune), Kept(tune)) << remark;
    }
}

TEST(RoundTripTest, ABracketsTextIsKeptIfItHasItsNumber)
{
    for (const char* bracket : {"1", "1.", "1st time", "1, 2", "1.4"}) {
        Tune tune;
        AddMeasure(tune).Slot(2) = bracket;
        AddNote(tune, kWhole, 1, "3");
        EXPECT_EQ(ThroughMusicXml(tune), Kept(tune)) << bracket;
    }
}

int StringsOf(const std::filesystem::path& path)
{
    return FindModeOfExtension(path.extension().string().substr(1))->NumStrings;
}

template <typename Visit> void ForEachExample(Visit visit)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QUILLON_EXAMPLES)) {
        const std::string extension = entry.path().extension().string();
        if (extension.empty() || !FindModeOfExtension(extension.substr(1)))
            continue;
        Tune tune;
        tune.NumStrings = StringsOf(entry.path());
        ItemReader reader(ReadFileBytes(entry.path().string()));
        ReadTune(reader, tune);
        visit(entry.path().filename().string(), tune);
        ++count;
    }
    EXPECT_GE(count, 5);
}

TEST(RoundTripTest, TheExamplesComeBackFromMusicXml)
{
    ForEachExample([](const std::string& name, Tune& tune) {
        EXPECT_EQ(ThroughMusicXml(tune), Kept(tune)) << name;
    });
}

/// The events without what a single one can be written as: a rest of three eighths is two.
std::string Sound(const Music& music)
{
    std::string text;
    for (const int at : PlayingOf(music).Order) {
        Music one;
        one.Measures = {music.Measures[at]};
        text += EventText(one) + " | ";
    }
    return text;
}

TEST(RoundTripTest, TheExamplesSoundTheSameInAbc)
{
    ForEachExample([](const std::string& name, Tune& tune) {
        Notices notices;
        const Music music = MusicOf(tune, ChoicesOf(tune, Repeats::Followed), notices);
        EXPECT_EQ(Sound(ReadAbc(WriteAbc(music, notices)).at(0).Tune), Sound(music)) << name;
    });
}

TEST(RoundTripTest, RandomTunesSoundTheSameInAbc)
{
    for (unsigned seed = 1; seed <= 200; ++seed) {
        Tune tune;
        Player(tune, seed).Play();
        Notices notices;
        const Music music = MusicOf(tune, ChoicesOf(tune, Repeats::Followed), notices);
        ASSERT_EQ(Sound(ReadAbc(WriteAbc(music, notices)).at(0).Tune), Sound(music))
            << "seed " << seed << "\n"
            << WriteAbc(music, notices);
    }
}

}  // namespace
}  // namespace quillon
