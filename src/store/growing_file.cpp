// Calls the system directly: standard C++ can neither lock a file nor sync it to disk.

#include "store/growing_file.h"

#include "store/descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quillon {

namespace {

[[noreturn]] void Fail(int reason)
{
    throw std::system_error(reason, std::generic_category());
}

}  // namespace

GrowingFile::GrowingFile(std::string thePath) : path(std::move(thePath))
{
    descriptor =
        open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (!IsOpen(descriptor))
        Fail(errno);
    flock(descriptor, LOCK_EX | LOCK_NB);  // where the file system knows no locks, it does without
}

GrowingFile::~GrowingFile()
{
    close(descriptor);
}

void GrowingFile::Append(std::string_view bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t written = write(descriptor, bytes.data() + done, bytes.size() - done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            const int reason = written < 0 ? errno : ENOSPC;
            [[maybe_unused]] const int cut = ftruncate(descriptor, static_cast<off_t>(size));
            Fail(reason);
        }
        done += static_cast<std::size_t>(written);
    }
    size += bytes.size();
}

void GrowingFile::Sync() const
{
    const bool failed = fdatasync(descriptor) != 0 && errno != EINVAL && errno != ENOTSUP;
    if (failed)
        Fail(errno);
}

std::string GrowingFile::Read(std::size_t from, std::size_t to) const
{
    std::string bytes(to - from, '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t got = pread(descriptor, bytes.data() + done, bytes.size() - done,
                                  static_cast<off_t>(from + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            Fail(got < 0 ? errno : EIO);
        done += static_cast<std::size_t>(got);
    }
    return bytes;
}

FileLock::FileLock(const std::string& path)
    : descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC))
{
    struct stat there;
    isOfAnotherUser = lstat(path.c_str(), &there) == 0 && there.st_uid != geteuid();
    isTaken =
        IsOpen(descriptor) && flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

FileLock::~FileLock()
{
    if (IsOpen(descriptor))
        close(descriptor);
}

bool GrowingFile::IsInPlace() const
{
    struct stat mine;
    struct stat there;
    return fstat(descriptor, &mine) == 0 && lstat(path.c_str(), &there) == 0 &&
           mine.st_dev == there.st_dev && mine.st_ino == there.st_ino;
}

}  // namespace quillon
