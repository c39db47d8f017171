#include "exchange/forms.h"

#include "exchange/abc_reader.h"
#include "exchange/abc_writer.h"
#include "exchange/lilypond_writer.h"
#include "exchange/midi_reader.h"
#include "exchange/musicxml_writer.h"
#include "exchange/mxl.h"
#include "exchange/text_tab_reader.h"
#include "exchange/text_tab_writer.h"

#include <algorithm>

namespace quillon {

const std::vector<ExchangeForm>& ExchangeForms()
{
    static const std::vector<ExchangeForm> forms = {
        {"abc",      "",     "ABC",             ReadAbc,     WriteAbc,      Repeats::Followed},
        {"musicxml", "xml",  "MusicXML",        ReadMxl,     WriteMusicXml, Repeats::Jumps   },
        {"mxl",      "",     "packed MusicXML", ReadMxl,     WriteMxl,      Repeats::Jumps   },
        {"mid",      "midi", "MIDI",            ReadMidi,    nullptr,       Repeats::Shown   },
        {"ly",       "",     "LilyPond",        nullptr,     WriteLilyPond, Repeats::Drawn   },
        {"txt",      "tab",  "text tablature",  ReadTextTab, WriteTextTab,  Repeats::Shown   },
    };
    return forms;
}

const ExchangeForm* FindForm(std::string_view nameOrExtension)
{
    if (nameOrExtension.empty())
        return nullptr;
    const auto& forms = ExchangeForms();
    const auto found = std::ranges::find_if(forms, [&](const ExchangeForm& form) {
        return form.Name == nameOrExtension || form.OtherExtension == nameOrExtension;
    });
    return found == forms.end() ? nullptr : &*found;
}

const ExchangeForm* FormOfFile(const std::string& path)
{
    const std::size_t name = path.find_last_of('/') + 1;
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || dot < name)
        return nullptr;
    std::string extension = path.substr(dot + 1);
    for (char& c : extension)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    const ExchangeForm* form = FindForm(extension);
    return form && form->Read ? form : nullptr;
}

bool IsTuneFile(std::string_view bytes)
{
    const std::string_view line = bytes.substr(0, bytes.find_first_of("\r\n"));
    return std::ranges::count(line, ',') == 2 &&
           line.find_first_not_of("0123456789-, ") == std::string_view::npos;
}

std::vector<FoundTune> ReadForm(const ExchangeForm& form, std::string_view bytes)
{
    if (bytes.size() > kLargestForeignFile)
        throw ExchangeError(kTooLargeToRead);
    return form.Read(bytes);
}

}  // namespace quillon
