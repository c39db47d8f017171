// Files that appear only when they are complete.
//
// Overwriting a file in place destroys it first: a full disk, a kill or a power cut then
// leaves a part of the new file and nothing of the old one. A staged file is written beside its
// place under a name of its own, and takes the place in one step.

#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// What fails here is a std::system_error with the system's reason.

constexpr unsigned kNewFileMode = 0666;  // less what the user's mask forbids

/// An empty file that nobody else has. It is removed at the end of its life, unless it has been
/// renamed.
class TemporaryFile {
public:
    TemporaryFile(const std::filesystem::path& folder, unsigned mode);
    ~TemporaryFile();

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& Path() const { return path; }
    int Descriptor() const { return descriptor; }

    void Write(std::string_view bytes);

    /// Shows other runs, until this object or the program ends, that the file is in use. Where the
    /// file system knows no locks, nothing happens.
    void Lock();

    /// Renames it, over a file that is there.
    void Rename(const std::filesystem::path& place);

private:
    std::string path;
    int descriptor;
};

class StagedFile {
public:
    /// Begins a file for `path`, or for what it leads to if it is a link. Permissions, owner and
    /// group will be those of the file that is there, as far as the system allows; a new file gets
    /// `mode`. A file that may not be written, or that is no regular file, is not replaced.
    explicit StagedFile(const std::filesystem::path& path, unsigned mode = kNewFileMode);

    /// Its path until it takes its place. Whoever writes there directly has to call Sync.
    const std::string& Path() const { return file.Path(); }

    /// All its bytes, brought to the disk.
    void Write(std::string_view bytes);
    void Sync();

    /// Replaces what is at its place. After a power cut the old file or the new one is there; the
    /// new one for sure once its folder has been synced.
    void TakePlace();

private:
    std::filesystem::path place;
    TemporaryFile file;
};

/// PATH for the first of some files that belong together, then PATH-2, PATH-3, ... before the dot.
std::vector<std::string> NumberedNames(const std::string& path, std::size_t count);

/// Brings a file that has been written to the disk. Streams are left alone.
void SyncFile(const std::filesystem::path& path);

/// Syncs the names in a folder ("" is the current one) to disk, as far as the system can.
void SyncFolder(const std::filesystem::path& folder);

/// Replaces the file at `path`, or makes a new one, for good. On failure all is as it was.
void ReplaceFile(const std::filesystem::path& path, std::string_view bytes,
                 unsigned mode = kNewFileMode);

/// Whether a file is locked by a TemporaryFile, of this run or another.
bool IsLocked(const std::filesystem::path& path);

/// Whether `path` is a stream that no file can replace: a device, a pipe, or an open file
/// such as /dev/stdout.
bool IsStream(const std::filesystem::path& path);

}  // namespace quillon
