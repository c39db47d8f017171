#include "store/item_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>

namespace quillon {

namespace {

namespace fs = std::filesystem;

bool IsSeparator(char c)
{
    return c == ',' || c == '\r' || c == '\n';
}

}  // namespace

std::string ReadFileBytes(const std::string& path)
{
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (fs::is_directory(status))
        throw Fault(Error::PathFileAccess);
    if (!fs::is_regular_file(status))
        throw Fault(Error::FileNotFound);
    if (fs::file_size(path, ignored) > kLargestFile)
        throw Fault(Error::Overflow);
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Fault(Error::PathFileAccess);
    std::string bytes;
    char block[4096];
    do {
        file.read(block, sizeof block);
        bytes.append(block, static_cast<std::size_t>(file.gcount()));
    } while (file && bytes.size() <= kLargestFile);
    if (file.bad())
        throw Fault(Error::PathFileAccess);
    if (bytes.size() > kLargestFile)
        throw Fault(Error::Overflow);  // it has grown, or hides its size
    return bytes;
}

void WriteFileBytes(const std::string& path, std::string_view bytes)
{
    std::error_code ignored;
    if (fs::is_fifo(path, ignored)) {
        errno = ENXIO;  // as of a pipe without a reader, for whom the program would wait
        throw Fault(Error::PathFileAccess);
    }
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw Fault(Error::PathFileAccess);
}

void DeleteFile(const std::string& path)
{
    std::error_code failure;
    fs::remove(path, failure);
    if (failure)
        throw Fault(Error::PathFileAccess);
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
