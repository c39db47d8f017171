// Where the export command puts what it makes.

#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace quillon {

// An output is a path or "-", standard output. What fails here is an ExportError that names the
// place and the system's reason.

/// To standard output; nothing may be lost silently.
void Say(const std::string& text);

/// Writes files under their names. None of them takes its place before all are on the disk; devices
/// and pipes get theirs at once.
void WriteFiles(const std::vector<std::string>& names, const std::vector<std::string>& files);

/// Writes a file that `render` creates at the path it is given.
void WriteRendered(const std::string& output,
                   const std::function<void(const std::string& path)>& render);

/// The files that the command reads and those that it has written, so that it does not overwrite
/// them.
class FilesInUse {
public:
    explicit FilesInUse(const std::vector<std::string>& tunes);

    /// Refuses an output that is one of these files. A tune that is written back may replace
    /// itself.
    void Refuse(const std::string& output, const std::string& tune, bool writtenBack) const;

    /// `output` was already made from `tune`.
    void Add(const std::string& output, const std::string& tune);

private:
    using Id = std::pair<dev_t, ino_t>;  // one, however many names and links lead to the file

    struct Use {
        std::string Tune;
        bool Written;
    };

    static std::optional<Id> IdOf(const std::string& path);

    std::map<Id, Use> files;
};

}  // namespace quillon
