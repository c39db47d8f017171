#include "app/export_output.h"

#include "headless/export.h"
#include "store/staged_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sys/stat.h>
#include <system_error>

namespace quillon {

namespace {

namespace fs = std::filesystem;

ExportError CannotWrite(const std::string& what, const std::error_code& reason,
                        const char* whatToDo = "name another place with -o")
{
    return ExportError(what + " cannot be written: " + reason.message() + "; " + whatToDo);
}

/// Runs what writes to `output`.
template <typename Work> void Write(const std::string& output, Work work)
{
    try {
        work();
    } catch (const std::system_error& failure) {
        throw CannotWrite(output, failure.code());
    }
}

/// `what` is a text or the buffer of a stream.
template <typename What> void ToStandardOutput(const What& what)
{
    if (!(std::cout << what << std::flush))
        throw CannotWrite("standard output", {errno, std::generic_category()},
                          "send it to another place");
}

template <typename What> void ToStream(const std::string& output, const What& what)
{
    std::ofstream stream(output, std::ios::binary);
    stream << what;
    stream.close();
    if (!stream)
        throw std::system_error(errno, std::generic_category());
}

/// A renderer wants a file in which it can go back.
void RenderToStream(const std::string& output,
                    const std::function<void(const std::string& path)>& render)
{
    std::optional<TemporaryFile> scratch;
    try {
        scratch.emplace(fs::temp_directory_path(), 0600);
        render(scratch->Path());
    } catch (const std::system_error& failure) {
        throw CannotWrite("the folder for temporary files", failure.code(),
                          "name another one in TMPDIR");
    }
    const std::ifstream rendered(scratch->Path(), std::ios::binary);
    if (output == "-")
        ToStandardOutput(rendered.rdbuf());
    else
        ToStream(output, rendered.rdbuf());
}

}  // namespace

void Say(const std::string& text)
{
    ToStandardOutput(text);
}

void WriteFiles(const std::vector<std::string>& names, const std::vector<std::string>& files)
{
    if (names.front() == "-") {
        for (const std::string& file : files)
            Say(file);
        return;
    }
    std::map<std::string, StagedFile> staged;
    for (std::size_t i = 0; i < files.size(); ++i)
        Write(names[i], [&] {
            if (IsStream(names[i]))
                ToStream(names[i], files[i]);
            else
                staged.try_emplace(names[i], names[i]).first->second.Write(files[i]);
        });
    for (auto& [name, file] : staged)
        Write(name, [&file = file] { file.TakePlace(); });
}

void WriteRendered(const std::string& output,
                   const std::function<void(const std::string& path)>& render)
{
    Write(output, [&] {
        if (output == "-" || IsStream(output)) {
            RenderToStream(output, render);
            return;
        }
        StagedFile file(output);
        render(file.Path());
        file.Sync();
        file.TakePlace();
    });
}

/// Of a regular file.
std::optional<FilesInUse::Id> FilesInUse::IdOf(const std::string& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return Id{status.st_dev, status.st_ino};
}

FilesInUse::FilesInUse(const std::vector<std::string>& tunes)
{
    for (const std::string& tune : tunes)
        if (const auto id = IdOf(tune))
            files.try_emplace(*id, Use{tune, false});
}

void FilesInUse::Refuse(const std::string& output, const std::string& tune, bool writtenBack) const
{
    const auto id = IdOf(output);
    const auto file = id ? files.find(*id) : files.end();
    if (file == files.end())
        return;
    const Use& use = file->second;
    if (use.Written)
        throw ExportError(output + " was already made from " + use.Tune +
                          "; export this tune to another folder");
    if (!writtenBack || use.Tune != tune)
        throw ExportError(output + " is one of the tunes to export; name another place with -o");
}

void FilesInUse::Add(const std::string& output, const std::string& tune)
{
    if (const auto id = IdOf(output))
        files.insert_or_assign(*id, Use{tune, true});
}

}  // namespace quillon
