// The file of a journal: entries, each behind its length and a checksum.
//
// The checksum goes over the one before too, so an entry counts only where it was written: a torn
// or damaged end loses itself alone, and nothing after it is believed.

#pragma once

#include "history/timeline.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// The first bytes of every journal. The number is raised when what follows means something else.
inline constexpr std::string_view kJournalMark = "Quillon journal 1\n";

// The names of journals in the program's folder: the run's, which tells when it began, then a
// number that grows, because a long journal goes on in another file.
inline constexpr std::string_view kRunPrefix = "Run-";
inline constexpr std::string_view kJournalExtension = ".journal";

/// A tune that is about to be written to its file.
struct Saving {
    std::string Path;
    std::string Bytes;
};

// Entries that are not about the timeline.
std::string EntryOf(const Saving& saving);

enum class Ending { Lost, Discarded };

/// The run has ended in good order, with work that is in no file.
std::string EntryOf(Ending ending);

/// How far a run has come in its journal.
struct Progress {
    std::uint64_t Entries = 0;  // so far, also those that are summed up
    std::uint32_t Check = 0;    // of the last one
    int Forgotten = 0;          // steps that are in the file no longer
};

/// What the whole entries of a journal tell.
struct JournalContents {
    std::optional<Timeline> Run;  // none if nothing can be brought back
    std::optional<Saving> Saved;  // the last one
    std::optional<Ending> Ended;  // none: by a kill, a fault or a power cut
    std::string Trouble;          // what is wrong with the file, "" if nothing
    Progress Reached;
};

/// Any bytes may be read.
JournalContents ReadJournal(std::string_view bytes);

/// An entry in its frame, the next one that `progress` counts.
std::string Frame(std::string_view entry, Progress& progress);

/// The latest steps that fit into so many bytes, but at least so many of those that were done.
struct StepsToKeep {
    std::size_t Bytes = 0;
    int Least = 0;
};

/// A journal of a run that has come as far as `progress` and goes on: with only the latest steps to
/// undo. Raises `progress.Forgotten`. What the run goes on to
/// write can be appended, as long as it does not go back beyond those steps.
std::string Summary(const Timeline& run, const std::optional<Saving>& saved, StepsToKeep kept,
                    Progress& progress);

}  // namespace quillon
