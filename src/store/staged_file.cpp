// Unlike the rest of the core, calls the system directly: standard C++ can neither make a file
// that is certain to be new nor sync it to disk.

#include "store/staged_file.h"

#include "store/descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quillon {

namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;                  // in a row, as in the kernel
constexpr auto kSame = static_cast<uid_t>(-1);  // leaves an owner or a group as it is

[[noreturn]] void Fail(int reason)
{
    throw std::system_error(reason, std::generic_category());
}

fs::path FolderOf(const fs::path& path)
{
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// The links of /proc name open files: what they lead to may have another name by now, or none.
bool IsLinkToAPlace(const fs::path& path)
{
    std::error_code ignored;
    return fs::is_symlink(path, ignored) &&
           !fs::canonical(FolderOf(path), ignored).string().starts_with("/proc/");
}

/// `path` without its links; nothing needs to be there.
fs::path PlaceOf(fs::path path)
{
    for (int links = 0; IsLinkToAPlace(path); ++links) {
        if (links == kMostLinks)
            Fail(ELOOP);
        path = FolderOf(path) / fs::read_symlink(path);
    }
    return path;
}

/// Of a file that may be replaced, its permissions; else `modeOfNewFile`.
unsigned ModeFor(const fs::path& place, unsigned modeOfNewFile)
{
    struct stat there;
    if (lstat(place.c_str(), &there) != 0)
        return modeOfNewFile;
    if (S_ISDIR(there.st_mode))
        Fail(EISDIR);
    if (!S_ISREG(there.st_mode))
        Fail(ENOTSUP);
    if (faccessat(AT_FDCWD, place.c_str(), W_OK, AT_EACCESS) != 0)
        Fail(errno);
    return there.st_mode & 0777;
}

/// In a shared folder a file stays its group's and, if the system allows it, its owner's. A group
/// that cannot stay does not leave its permissions to another.
void TakeAfter(const fs::path& place, int descriptor)
{
    struct stat there;
    if (lstat(place.c_str(), &there) != 0)
        return;
    const bool sameGroup = fchown(descriptor, kSame, there.st_gid) == 0;
    [[maybe_unused]] const int ownerFailed = fchown(descriptor, there.st_uid, kSame);
    fchmod(descriptor, there.st_mode & (sameGroup ? 0777 : 0707));
}

void SyncDescriptor(int descriptor)
{
    const bool unknownThere = fsync(descriptor) != 0 && errno != EINVAL && errno != ENOTSUP;
    if (unknownThere)
        Fail(errno);
}

}  // namespace

TemporaryFile::TemporaryFile(const fs::path& folder, unsigned mode)
{
    std::random_device random;
    do {
        path = (folder / (".quillon-" + std::to_string(random()))).string();
        descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    } while (!IsOpen(descriptor) && errno == EEXIST);
    if (!IsOpen(descriptor))
        Fail(errno);
}

TemporaryFile::~TemporaryFile()
{
    close(descriptor);
    if (!path.empty())
        unlink(path.c_str());
}

void TemporaryFile::Write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            Fail(written < 0 ? errno : ENOSPC);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void TemporaryFile::Lock()
{
    flock(descriptor, LOCK_EX | LOCK_NB);
}

void TemporaryFile::Rename(const fs::path& place)
{
    fs::rename(path, place);
    path.clear();
}

StagedFile::StagedFile(const fs::path& path, unsigned mode)
    : place(PlaceOf(path)), file(FolderOf(place), ModeFor(place, mode))
{
    TakeAfter(place, file.Descriptor());
}

void StagedFile::Write(std::string_view bytes)
{
    file.Write(bytes);
    Sync();
}

void StagedFile::Sync()
{
    SyncDescriptor(file.Descriptor());
}

void StagedFile::TakePlace()
{
    file.Rename(place);
}

std::vector<std::string> NumberedNames(const std::string& first, std::size_t count)
{
    const fs::path path(first);
    std::vector<std::string> names{first};
    for (std::size_t number = 2; number <= count; ++number) {
        const std::string name =
            path.stem().string() + "-" + std::to_string(number) + path.extension().string();
        names.push_back((path.parent_path() / name).string());
    }
    return names;
}

void SyncFile(const fs::path& path)
{
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored))
        return;
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (!IsOpen(descriptor))
        return;  // it may be written, but not read
    const bool failed = fsync(descriptor) != 0 && errno != EINVAL && errno != ENOTSUP;
    const int reason = errno;
    close(descriptor);
    if (failed)
        Fail(reason);
}

void SyncFolder(const fs::path& folder)
{
    const int descriptor =
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (!IsOpen(descriptor))
        return;
    fsync(descriptor);
    close(descriptor);
}

void ReplaceFile(const fs::path& path, std::string_view bytes, unsigned mode)
{
    StagedFile file(path, mode);
    file.Write(bytes);
    file.TakePlace();
    SyncFolder(FolderOf(PlaceOf(path)));
}

bool IsLocked(const fs::path& path)
{
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored))
        return false;
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (!IsOpen(descriptor))
        return false;
    const bool locked = flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(descriptor);
    return locked;
}

bool IsStream(const fs::path& path)
{
    std::error_code ignored;
    const fs::file_status status = fs::symlink_status(PlaceOf(path), ignored);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

}  // namespace quillon
