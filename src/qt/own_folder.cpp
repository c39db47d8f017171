#include "qt/own_folder.h"

#include "qt/text.h"

#include <QStandardPaths>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quillon {

namespace {

namespace fs = std::filesystem;

constexpr const char* kStandIn = "quillon-own-";

/// Nobody but the user could have put anything there.
bool IsPrivate(const fs::path& folder)
{
    struct stat status;
    return lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & 0077) == 0;
}

std::string StandIn()
{
    std::error_code failed;
    const fs::path temporary = fs::temp_directory_path(failed);
    for (const auto& entry : fs::directory_iterator(temporary, failed))
        if (entry.path().filename().string().starts_with(kStandIn) && IsPrivate(entry.path()))
            return entry.path().string();
    std::string name = (temporary / kStandIn).string() + "XXXXXX";
    return mkdtemp(name.data()) ? name : std::string();
}

void CopyTunings(const fs::path& from, const fs::path& to)
{
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(from, ignored))
        if (entry.path().extension() == ".tun")
            fs::copy_file(entry.path(), to / entry.path().filename(),
                          fs::copy_options::skip_existing, ignored);
}

}  // namespace

OwnFolder ChooseOwnFolder(const std::string& wanted)
{
    std::error_code failed;
    fs::create_directories(wanted, failed);
    if (!failed && access(wanted.c_str(), W_OK | X_OK) != 0)
        failed = {errno, std::generic_category()};
    if (!failed)
        return {wanted, ""};
    if (failed == std::errc::file_exists)  // as the system says of a link that leads nowhere
        failed = std::make_error_code(std::errc::not_a_directory);
    const std::string instead = StandIn();
    if (instead.empty())
        return {wanted, failed.message()};
    CopyTunings(wanted, instead);
    return {instead, failed.message()};
}

const OwnFolder& ChosenOwnFolder()
{
    static const OwnFolder folder = ChooseOwnFolder(PathToBytes(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/quillon"));
    return folder;
}

}  // namespace quillon
