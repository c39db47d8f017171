// What the export command reads: tunes as they are, and other programs' files turned into tunes.

#pragma once

#include "app/export_command.h"
#include "exchange/notices.h"

#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// A tune to export.
struct TuneSource {
    std::string Path;  // the file that it stands in
    std::string Name;  // for the file that is made of it in a folder, without extension
    int Strings = 0;   // of a tune that was made of another program's file

    std::string Bytes;    // its tune file, if there is none yet
    std::string Failure;  // why it cannot be read
    Notices Said;

    bool IsForeign() const { return Strings > 0; }
};

/// The tunes in a file. One of another program that cannot be read at all is an ExportError.
std::vector<TuneSource> SourcesOf(const ExportCommand& command, const std::string& path);

}  // namespace quillon
