// ZIP archives as values.

#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// what() says what is wrong with an archive.
class ZipError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Whether bytes begin as an archive does.
bool IsZip(std::string_view bytes);

/// The names of all files in an archive, as the bytes that stand there.
std::vector<std::string> ZipNames(std::string_view archive);

/// The file of that name; nothing if there is none. More than `largest` bytes, whatever the archive
/// says of them beforehand, are a ZipError.
std::optional<std::string> ReadZip(std::string_view archive, const std::string& name,
                                   std::size_t largest);

struct ZipEntry {
    std::string Name;
    std::string Bytes;
    bool Compressed = true;
};

/// The same entries always make the same bytes.
std::string MakeZip(const std::vector<ZipEntry>& entries);

}  // namespace quillon
