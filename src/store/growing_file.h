// A file that only grows, such as a log. It is locked as long as it is open, so that other runs see
// that it is in use; the system frees the lock however the program ends.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon {

// What fails here is a std::system_error with the system's reason.

class GrowingFile {
public:
    /// A new file that its owner alone may read. It is an error if something is at `path`.
    explicit GrowingFile(std::string thePath);
    ~GrowingFile();

    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

    const std::string& Path() const { return path; }
    std::size_t Size() const { return size; }

    /// All of the bytes, or on failure none.
    void Append(std::string_view bytes);

    /// Brings what it holds to the disk. Another thread may append meanwhile.
    void Sync() const;

    /// What it holds, from..to.
    std::string Read(std::size_t from, std::size_t to) const;

    /// Whether it is still to be found under its path.
    bool IsInPlace() const;

private:
    std::string path;
    int descriptor;
    std::size_t size = 0;
};

/// Locks a file of an ended run, so that no other run takes it too.
class FileLock {
public:
    explicit FileLock(const std::string& path);
    ~FileLock();

    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Whether its run lives, or another one has it.
    bool IsTaken() const { return isTaken; }

    bool IsOfAnotherUser() const { return isOfAnotherUser; }

private:
    int descriptor;
    bool isTaken = false;
    bool isOfAnotherUser = false;
};

}  // namespace quillon
