// Text files of items: the lexical form that tune files, scratch files and tuning files share.
//
// A line is a list of items separated by commas; to the reader a line end is just another comma, so
// it does not matter which line an item is on. A text is enclosed in double quotes; nothing in it
// is escaped: it ends at the next double quote, and anything up to the next comma is dropped.

#pragma once

#include "store/numbers.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace quillon {

/// A full table of long texts is about 100 KB: anything far larger is not one of our files.
constexpr std::uintmax_t kLargestFile = 64 * 1024 * 1024;

/// The bytes of a file. A file that is missing is a file-not-found Fault, and so is a pipe or a
/// device, where a reader might wait for ever. A file that cannot be read (a folder, no permission)
/// is a path/file-access Fault, one that is too large an overflow.
std::string ReadFileBytes(const std::string& path);

/// Replaces the contents of a file, which is emptied first. A path/file-access Fault on failure;
/// errno tells the reason. Nothing is written to a pipe.
void WriteFileBytes(const std::string& path, std::string_view bytes);

/// Deletes a file, if it is there. A path/file-access Fault on failure.
void DeleteFile(const std::string& path);

class ItemReader {
public:
    explicit ItemReader(std::string fileBytes) : bytes(std::move(fileBytes)) {}

    bool AtEnd() const { return position >= bytes.size(); }

    /// The next item as a text. At the end of the file: an input-past-end Fault.
    std::string Text();

    /// The next item as a number, 0 if it is not one. Beyond 16 bits: an overflow Fault.
    Int16 Number();

private:
    void RequireItem() const;
    std::string UpToSeparator();

    std::string bytes;
    std::size_t position = 0;
};

/// Builds the bytes of an item file. Lines end in CR LF.
class ItemWriter {
public:
    ItemWriter& Number(int value);
    ItemWriter& Text(std::string_view text);
    ItemWriter& EndLine();

    const std::string& Bytes() const { return bytes; }

private:
    void Separate();

    std::string bytes;
    bool lineStarted = false;
};

}  // namespace quillon
