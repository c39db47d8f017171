#include "store/item_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace quillon {

namespace {

namespace fs = std::filesystem;

bool IsSeparator(char c)
{
    return c == ',' || c == '\r' || c == '\n';
}

/// A Fault about that file, with the reason that errno tells, if any.
[[noreturn]] void Fail(Error error, const std::string& path)
{
    const std::error_code reason(errno, std::generic_category());
    std::error_code ignored;
    const std::string whole = fs::absolute(path, ignored).string();
    throw Fault::OfFile(error, whole, reason ? reason.message() : "");
}

}  // namespace

std::string ReadFileBytes(const std::string& path)
{
    errno = 0;
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (fs::is_directory(status))
        Fail(Error::PathFileAccess, path);
    if (!fs::is_regular_file(status))
        Fail(Error::FileNotFound, path);
    if (fs::file_size(path, ignored) > kLargestFile)
        Fail(Error::Overflow, path);
    std::ifstream file(path, std::ios::binary);
    if (!file)
        Fail(Error::PathFileAccess, path);
    std::string bytes;
    char block[4096];
    do {
        file.read(block, sizeof block);
        bytes.append(block, static_cast<std::size_t>(file.gcount()));
    } while (file && bytes.size() <= kLargestFile);
    if (file.bad())
        Fail(Error::PathFileAccess, path);
    if (bytes.size() > kLargestFile)
        Fail(Error::Overflow, path);  // it has grown, or hides its size
    return bytes;
}

void WriteFileBytes(const std::string& path, std::string_view bytes)
{
    std::error_code ignored;
    if (fs::is_fifo(path, ignored)) {
        errno = ENXIO;  // as of a pipe without a reader, for whom the program would wait
        Fail(Error::PathFileAccess, path);
    }
    errno = 0;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        Fail(Error::PathFileAccess, path);
}

void DeleteFile(const std::string& path)
{
    std::error_code failure;
    fs::remove(path, failure);
    errno = failure.value();
    if (failure)
        Fail(Error::PathFileAccess, path);
}

void ItemReader::RequireItem() const
{
    if (AtEnd())
        throw Fault(Error::InputPastEnd);
}

std::string ItemReader::UpToSeparator()
{
    const std::size_t start = position;
    while (!AtEnd() && !IsSeparator(bytes[position]))
        ++position;
    const std::size_t end = position;
    if (!AtEnd()) {
        const bool carriageReturn = bytes[position++] == '\r';
        if (carriageReturn && !AtEnd() && bytes[position] == '\n')
            ++position;
    }
    return bytes.substr(start, end - start);
}

std::string ItemReader::Text()
{
    RequireItem();
    const std::size_t start = bytes.find_first_not_of(" \t", position);
    if (start == std::string::npos || bytes[start] != '"')
        return UpToSeparator();
    const std::size_t close = bytes.find('"', start + 1);
    const std::size_t end = close == std::string::npos ? bytes.size() : close;
    std::string text = bytes.substr(start + 1, end - start - 1);
    position = end;
    UpToSeparator();
    return text;
}

Int16 ItemReader::Number()
{
    RequireItem();
    return Round(Val(UpToSeparator()));
}

void ItemWriter::Separate()
{
    if (lineStarted)
        bytes += ',';
    lineStarted = true;
}

ItemWriter& ItemWriter::Number(int value)
{
    Separate();
    bytes += std::to_string(value);
    return *this;
}

ItemWriter& ItemWriter::Text(std::string_view text)
{
    Separate();
    bytes += '"';
    bytes += text;
    bytes += '"';
    return *this;
}

ItemWriter& ItemWriter::EndLine()
{
    bytes += "\r\n";
    lineStarted = false;
    return *this;
}

}  // namespace quillon
