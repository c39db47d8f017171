// The forms of other programs that tunes are read from and written in.

#pragma once

#include "exchange/table_music.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Far more than any tune book; what is larger is something else.
constexpr std::size_t kLargestForeignFile = std::size_t{8} * 1024 * 1024;

constexpr const char* kTooLargeToRead = "It is larger than 8 MB; divide it into smaller files.";

struct ExchangeForm {
    std::string_view Name;  // as the command line has it, and the extension of new files
    std::string_view OtherExtension;
    std::string_view About;

    /// All tunes of a file. One that holds none is an ExchangeError. None: it is only written.
    std::vector<FoundTune> (*Read)(std::string_view bytes);

    /// Null: it is only read.
    std::string (*Write)(const Music& music, Notices& notices);

    Repeats Reader;  // how what is written will be read
};

/// The form of that name, or of files with that extension; null if there is none.
const ExchangeForm* FindForm(std::string_view nameOrExtension);

/// The form that is read from files with the path's extension, in any case; null if there is none.
const ExchangeForm* FormOfFile(const std::string& path);

/// Whether the bytes of a file are a tune of our own, which is one whatever its extension. Its
/// first line is three numbers.
bool IsTuneFile(std::string_view bytes);

/// All of them, for lists.
const std::vector<ExchangeForm>& ExchangeForms();

/// Reads `bytes` in the given form. Too many of them are an ExchangeError too.
std::vector<FoundTune> ReadForm(const ExchangeForm& form, std::string_view bytes);

}  // namespace quillon
