// Tune files and the scratch files that hold parts of a tune.
//
// A record is nine lines: Measure, NoteCode, XPos; Reserved, BeatUnit, Beats, Spacing; BeamCode,
// BarCode, LeftHand, RightHand, ChordText; then six lines with one slot each. A tune file is the
// header record and then every record that is not empty, in the order of the table; a scratch
// file is just records. There is no count, no version and nothing that tells the instrument.

#pragma once

#include "store/item_file.h"
#include "store/tune.h"

namespace quillon {

// Scratch files, in the current directory, which is the window's own.
inline constexpr const char* kInsertScratch = "Temp.Sav";  // the tail while a measure is inserted
inline constexpr const char* kPasteScratch = "Temp.Dat";   // the tail while measures are pasted
inline constexpr const char* kCopyBuffer = "CopyBuff.Dat";

/// Reads the next record into `record`. A file that ends within it: an input-past-end Fault.
void ReadRecord(ItemReader& reader, NoteRecord& record);

void WriteRecord(ItemWriter& writer, const NoteRecord& record);

/// Reads all records of a tune file into `tune`, whose table is clear. LastNote and LastMeas
/// follow record by record, so after a Fault they tell how far it came.
void ReadTune(ItemReader& reader, Tune& tune);

/// The bytes of the tune's file: the header, then the records 1..LastNote that are not empty.
std::string TuneBytes(const Tune& tune);

/// The bytes of the records from..to (none if `to` is below `from`), empty ones too.
std::string RecordBytes(const Tune& tune, int from, int to);

}  // namespace quillon
