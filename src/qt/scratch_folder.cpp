#include "qt/scratch_folder.h"

#include "qt/text.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon {

namespace {

namespace fs = std::filesystem;

constexpr const char* kPrefix = "quillon-run-";
constexpr int kMostTries = 10;

std::string ownFolder;  // of this run, "" without one

/// Locks a folder of this user, so that no other run takes it for a dead run's. Returns
/// the descriptor that holds it, -1 if it is held or somebody else's.
int Hold(const std::string& folder)
{
    const int held = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat status;
    if (held >= 0 && fstat(held, &status) == 0 && status.st_uid == geteuid() &&
        flock(held, LOCK_EX | LOCK_NB) == 0 && fstat(held, &status) == 0 && status.st_nlink > 0)
        return held;
    if (held >= 0)
        close(held);
    return -1;
}

void RemoveFoldersOfDeadRuns(const fs::path& place)
{
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(place, ignored)) {
        if (!entry.path().filename().string().starts_with(kPrefix))
            continue;
        const int held = Hold(entry.path().string());
        if (held < 0)
            continue;
        fs::remove_all(entry.path(), ignored);
        close(held);
    }
}

/// A start that cleans up may take the new folder away before it is held.
bool EnterNewFolderIn(const fs::path& place)
{
    for (int tries = 0; tries < kMostTries; ++tries) {
        std::string name = (place / kPrefix).string() + "XXXXXX";
        if (!mkdtemp(name.data()))
            return false;
        if (Hold(name) < 0)  // until the program ends
            continue;
        if (chdir(name.c_str()) != 0)
            return false;
        ownFolder = name;
        return true;
    }
    return false;
}

/// What the user has named from the folder that he was in.
void MakeNamedPathsAbsolute()
{
    std::error_code failed;
    for (const char* name : {"QUILLON_AUDIO_FILE", "QUILLON_SOUNDFONT"}) {
        const char* path = std::getenv(name);
        const std::string whole = path ? fs::absolute(path, failed).string() : "";
        if (!whole.empty())
            setenv(name, whole.c_str(), 1);
    }
}

void RemoveOwnFolder()
{
    std::error_code ignored;
    if (!ownFolder.empty())
        fs::remove_all(ownFolder, ignored);
}

}  // namespace

void EnterScratchFolder()
{
    MakeNamedPathsAbsolute();
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code failed;
    for (const fs::path& place :
         {fs::path(runtime ? runtime : ""), fs::temp_directory_path(failed)}) {
        if (!place.is_absolute())
            continue;
        RemoveFoldersOfDeadRuns(place);
        if (EnterNewFolderIn(place))
            break;
    }
    std::atexit(RemoveOwnFolder);
    std::at_quick_exit(RemoveOwnFolder);
}

std::string StartFolder()
{
    const QFileInfo folder(QDir::currentPath());
    return PathToBytes(folder.isDir() && folder.isWritable() ? QDir::currentPath()
                                                             : QDir::homePath());
}

std::string AbsoluteCommandLine(const std::string& commandLine)
{
    const std::size_t start = commandLine.starts_with('"') ? 1 : 0;
    const bool namesAFile = commandLine.size() > 2 * start;  // the last character goes with a quote
    std::error_code failed;
    const fs::path current = fs::current_path(failed);
    if (!namesAFile || failed || commandLine[start] == '/')
        return commandLine;
    return commandLine.substr(0, start) + (current / commandLine.substr(start)).string();
}

}  // namespace quillon
