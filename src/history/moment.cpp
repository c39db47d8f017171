#include "history/moment.h"

#include "history/bytes.h"

namespace quillon {

namespace {

void PutWork(ByteWriter& bytes, const NoteRecord& record)
{
    for (int number :
         {record.Measure, record.NoteCode, record.Reserved, record.BeatUnit, record.Beats})
        bytes.Signed(number);
    bytes.Byte(static_cast<unsigned char>(record.LeftHand));
    bytes.Byte(static_cast<unsigned char>(record.RightHand));
    bytes.Text(record.BarCode);
    bytes.Text(record.ChordText);
    for (const std::string& slot : record.Slots)
        bytes.Text(slot);
}

}  // namespace

const ScratchBytes& ScratchFile::Read(const char* name, bool anyway)
{
    std::error_code missing;
    const auto now = std::filesystem::last_write_time(name, missing);
    if (!missing && !anyway && bytes && now == written)
        return bytes;
    bytes.reset();
    written = now;
    try {
        if (!missing)
            bytes = ReadFileBytes(name);
    } catch (const Fault&) {
        // what cannot be read is not a parked tail
    }
    return bytes;
}

Moment::Moment(const quillon::Values& live)
    : Music(live.Music), Form(live.Form), StaffBox(live.StaffBox), EndBarX(live.EndBarX),
      lblMeasNum(live.lblMeasNum), lblLastNote(live.lblLastNote), hdbkbox(live.hdbkbox),
      Page(live.Page), CurTuning(live.CurTuning)
{
    for (std::size_t i = 0; i < ScratchFiles.size(); ++i)
        ScratchFiles.at(i) = ScratchFile().Read(kScratchFiles.at(i), true);
}

bool Moment::IsSound() const
{
    return FindMode(Music.NumStrings) && Form.Toolbar1 >= 0 && Form.Toolbar1 <= kNoteValues;
}

void Moment::PutBack(const quillon::Values& live)
{
    for (std::size_t i = 0; i < ScratchFiles.size(); ++i) {
        const char* name = kScratchFiles.at(i);
        const ScratchBytes& bytes = ScratchFiles.at(i);
        if (ScratchFile().Read(name, true) == bytes)
            continue;
        if (bytes)
            WriteFileBytes(name, *bytes);
        else
            DeleteFile(name);
    }
    live.Music.Table = Music.Table;
    FieldsOf(live) = FieldsOf(Values());
    live.Form.Parked = Form.Parked;
    live.StaffBox.SetPicture(StaffBox.Picture());
}

std::string WorkBytes(const Tune& tune)
{
    ByteWriter bytes;
    PutWork(bytes, tune[0]);
    for (int i = 1; i <= tune.LastNote; ++i)
        if (tune[i].Measure > 0)
            PutWork(bytes, tune[i]);
    return bytes.Take();
}

}  // namespace quillon
