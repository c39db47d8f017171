#include "store/tune_file.h"

namespace quillon {

void ReadRecord(ItemReader& reader, NoteRecord& record)
{
    record.Measure = reader.Number();
    record.NoteCode = reader.Number();
    record.XPos = reader.Number();
    record.Reserved = reader.Number();
    record.BeatUnit = reader.Number();
    record.Beats = reader.Number();
    record.Spacing = reader.Number();
    record.BeamCode = reader.Number();
    record.BarCode = reader.Text();
    record.LeftHand = OneCharacter(reader.Text());
    record.RightHand = OneCharacter(reader.Text());
    record.ChordText = reader.Text();
    for (std::string& slot : record.Slots)
        slot = reader.Text();
}

void WriteRecord(ItemWriter& writer, const NoteRecord& record)
{
    writer.Number(record.Measure).Number(record.NoteCode).Number(record.XPos).EndLine();
    writer.Number(record.Reserved).Number(record.BeatUnit).Number(record.Beats);
    writer.Number(record.Spacing).EndLine();
    writer.Number(record.BeamCode).Text(record.BarCode);
    writer.Text({&record.LeftHand, 1})
        .Text({&record.RightHand, 1})
        .Text(record.ChordText)
        .EndLine();
    for (const std::string& slot : record.Slots)
        writer.Text(slot).EndLine();
}

void ReadTune(ItemReader& reader, Tune& tune)
{
    for (int i = 0; !reader.AtEnd(); ++i) {
        ReadRecord(reader, tune[i]);
        tune.LastNote = i;
        tune.LastMeas = tune[i].Measure;
    }
}

std::string TuneBytes(const Tune& tune)
{
    ItemWriter writer;
    WriteRecord(writer, tune[0]);
    for (int i = 1; i <= tune.LastNote; ++i)
        if (tune[i].Measure > 0)
            WriteRecord(writer, tune[i]);
    return writer.Bytes();
}

std::string RecordBytes(const Tune& tune, int from, int to)
{
    ItemWriter writer;
    for (int i = from; i <= to; ++i)
        WriteRecord(writer, tune[i]);
    return writer.Bytes();
}

}  // namespace quillon
