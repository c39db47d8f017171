#include "store/tunings.h"

#include <algorithm>

namespace quillon {

namespace {

void ReadTuning(ItemReader& reader, TuningRecord& tuning, int pitches)
{
    tuning.TuningName = reader.Text();
    for (int s = 1; s <= pitches; ++s)
        tuning.Pitch(s) = reader.Number();
}

/// Runs `load`; when the file fails it, rebuilds the file and runs it once more.
template <typename Load> bool LoadOrRebuild(const std::string& path, int numStrings, Load load)
{
    try {
        load(ItemReader(ReadFileBytes(path)));
        return false;
    } catch (const Fault& fault) {
        if (fault.Number() == Error::SubscriptOutOfRange)
            throw;  // too many rows: nothing is wrong with the file itself
    }
    RebuildTuningFile(path, numStrings);
    load(ItemReader(ReadFileBytes(path)));
    return true;
}

}  // namespace

std::vector<TuningRecord> DefaultTunings(int numStrings)
{
    switch (numStrings) {
    case 4:
        return {
            {"Mandolin",       {76, 69, 62, 55}},
            {"Bass",           {43, 38, 33, 28}},
            {"Tenor Banjo",    {69, 62, 55, 48}},
            {"Plectrum Banjo", {62, 59, 55, 48}},
            {"Ukulele",        {71, 66, 62, 57}},
            {"Baritone Uke",   {64, 59, 55, 50}},
        };
    case 5:
        return {
            {"G Tuning", {62, 59, 55, 50, 67}},
            {"C Tuning", {62, 59, 55, 48, 67}},
            {"D Tuning", {62, 57, 54, 50, 66}},
        };
    default:
        return {
            {"Standard",  {64, 59, 55, 50, 45, 40}},
            {"Dropped D", {64, 59, 55, 50, 45, 38}},
            {"Open D",    {62, 57, 54, 50, 45, 38}},
            {"G Tuning",  {64, 59, 55, 50, 43, 38}},
        };
    }
}

void WriteTunings(const std::string& path, const std::vector<TuningRecord>& list, int count,
                  int numStrings)
{
    ItemWriter writer;
    for (int i = 0; i < count; ++i) {
        const TuningRecord& tuning = list.at(static_cast<std::size_t>(i));
        writer.Text(tuning.TuningName);
        for (int s = 1; s <= numStrings; ++s)
            writer.Number(tuning.Pitch(s));
        writer.EndLine();
    }
    WriteFileBytes(path, writer.Bytes());
}

void RebuildTuningFile(const std::string& path, int numStrings)
{
    const std::vector<TuningRecord> rows = DefaultTunings(numStrings);
    WriteTunings(path, rows, static_cast<int>(rows.size()), numStrings);
}

int ReadTunings(ItemReader& reader, int numStrings, Tunings& tunings)
{
    int count = 0;
    for (; !reader.AtEnd(); ++count)
        ReadTuning(reader, tunings[count], numStrings);
    return count;
}

int LoadTunings(const std::string& path, int numStrings, Tunings& tunings)
{
    int count = 0;
    LoadOrRebuild(path, numStrings,
                  [&](ItemReader reader) { count = ReadTunings(reader, numStrings, tunings); });
    return count;
}

bool LoadActiveTuning(const std::string& path, int numStrings, Tunings& tunings)
{
    const bool rebuilt = LoadOrRebuild(
        path, numStrings, [&](ItemReader reader) { ReadTuning(reader, tunings[0], kStringSlots); });
    tunings.CurTuning = tunings[0].Pitches;
    return rebuilt;
}

}  // namespace quillon
