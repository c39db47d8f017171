// A fresh directory that is the current one while a test runs.

#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace quillon {

class TemporaryDirectory {
public:
    TemporaryDirectory() : before(std::filesystem::current_path())
    {
        std::string name = (std::filesystem::temp_directory_path() / "quillon-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("cannot make " + name);
        path = name;
        std::filesystem::current_path(path);
    }

    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::current_path(before, ignored);
        std::filesystem::remove_all(path, ignored);
    }

    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string Path() const { return path.string(); }
    std::string Path(const std::string& name) const { return (path / name).string(); }

private:
    std::filesystem::path before;
    std::filesystem::path path;
};

}  // namespace quillon
