#include "zip/zip_archive.h"

#include <minizip/unzip.h>
#include <minizip/zip.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

namespace quillon {

namespace {

constexpr const char* kDamaged = "It is no ZIP archive, or a damaged one.";
constexpr uLong kFirstDay = 0x00210000;  // 1 January 1980, the first that an archive can tell

/// What the library takes for a file. Only one that is written is longer than before.
struct Memory {
    std::string Bytes;
    std::size_t At = 0;
};

Memory& MemoryOf(voidpf stream)
{
    return *static_cast<Memory*>(stream);
}

uLong Read(voidpf, voidpf stream, void* buffer, uLong size)
{
    Memory& memory = MemoryOf(stream);
    const std::size_t from = std::min(memory.At, memory.Bytes.size());
    const std::size_t count = std::min<std::size_t>(size, memory.Bytes.size() - from);
    std::memcpy(buffer, memory.Bytes.data() + from, count);
    memory.At = from + count;
    return count;
}

uLong Write(voidpf, voidpf stream, const void* buffer, uLong size)
{
    Memory& memory = MemoryOf(stream);
    memory.Bytes.resize(std::max(memory.Bytes.size(), memory.At + size));
    std::memcpy(memory.Bytes.data() + memory.At, buffer, size);
    memory.At += size;
    return size;
}

long Seek(voidpf, voidpf stream, ZPOS64_T offset, int origin)
{
    Memory& memory = MemoryOf(stream);
    const std::size_t base = origin == ZLIB_FILEFUNC_SEEK_CUR   ? memory.At
                             : origin == ZLIB_FILEFUNC_SEEK_END ? memory.Bytes.size()
                                                                : 0;
    if (offset > memory.Bytes.size() - std::min(base, memory.Bytes.size()))
        return -1;
    memory.At = base + offset;
    return 0;
}

zlib_filefunc64_def FunctionsFor(Memory& memory)
{
    zlib_filefunc64_def functions{};
    functions.zopen64_file = [](voidpf opaque, const void*, int) { return opaque; };
    functions.zread_file = Read;
    functions.zwrite_file = Write;
    functions.ztell64_file = [](voidpf, voidpf stream) -> ZPOS64_T { return MemoryOf(stream).At; };
    functions.zseek64_file = Seek;
    functions.zclose_file = [](voidpf, voidpf) { return 0; };
    functions.zerror_file = [](voidpf, voidpf) { return 0; };
    functions.opaque = &memory;
    return functions;
}

class Archive {
public:
    explicit Archive(std::string_view bytes) : memory{std::string(bytes)}
    {
        zlib_filefunc64_def functions = FunctionsFor(memory);
        file = unzOpen2_64(nullptr, &functions);
        if (file == nullptr)
            throw ZipError(kDamaged);
    }
    ~Archive() { unzClose(file); }

    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    unzFile File() { return file; }

private:
    Memory memory;
    unzFile file;
};

void Require(bool done)
{
    if (!done)
        throw ZipError(kDamaged);
}

}  // namespace

bool IsZip(std::string_view bytes)
{
    return bytes.starts_with("PK\3\4");
}

std::vector<std::string> ZipNames(std::string_view bytes)
{
    constexpr std::size_t kLongest = 1024;  // a longer name is cut
    Archive archive(bytes);
    std::vector<std::string> names;
    int found = unzGoToFirstFile(archive.File());
    while (found == UNZ_OK) {
        char name[kLongest] = {};
        unz_file_info64 info{};
        Require(unzGetCurrentFileInfo64(archive.File(), &info, name, kLongest - 1, nullptr, 0,
                                        nullptr, 0) == UNZ_OK);
        names.emplace_back(name);
        found = unzGoToNextFile(archive.File());
    }
    return names;
}

std::optional<std::string> ReadZip(std::string_view bytes, const std::string& name,
                                   std::size_t largest)
{
    constexpr int kCaseMatters = 1;
    Archive archive(bytes);
    if (unzLocateFile(archive.File(), name.c_str(), kCaseMatters) != UNZ_OK)
        return std::nullopt;
    Require(unzOpenCurrentFile(archive.File()) == UNZ_OK);
    std::string content;
    char block[16 * 1024];
    for (;;) {
        const int count = unzReadCurrentFile(archive.File(), block, sizeof block);
        Require(count >= 0);
        if (count == 0)
            break;
        content.append(block, static_cast<std::size_t>(count));
        if (content.size() > largest)
            throw ZipError("It unpacks to more than a score can have.");
    }
    Require(unzCloseCurrentFile(archive.File()) == UNZ_OK);  // the checksum is right
    return content;
}

std::string MakeZip(const std::vector<ZipEntry>& entries)
{
    Memory memory;
    zlib_filefunc64_def functions = FunctionsFor(memory);
    zipFile file = zipOpen2_64(nullptr, APPEND_STATUS_CREATE, nullptr, &functions);
    zip_fileinfo info{};
    info.dosDate = kFirstDay;
    for (const ZipEntry& entry : entries) {
        zipOpenNewFileInZip(file, entry.Name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                            entry.Compressed ? Z_DEFLATED : 0, Z_BEST_COMPRESSION);
        zipWriteInFileInZip(file, entry.Bytes.data(), static_cast<unsigned>(entry.Bytes.size()));
        zipCloseFileInZip(file);
    }
    zipClose(file, nullptr);
    return memory.Bytes;
}

}  // namespace quillon
