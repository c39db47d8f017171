#include "exchange/forms.h"

#include "exchange/abc_reader.h"
#include "exchange/abc_writer.h"
#include "exchange/lilypond_writer.h"
#include "exchange/midi_reader.h"
#include "exchange/musicxml_reader.h"
#include "exchange/musicxml_writer.h"
#include "exchange/text_tab_reader.h"
#include "exchange/text_tab_writer.h"

#include <algorithm>

namespace quillon {

const std::vector<ExchangeForm>& ExchangeForms()
{
    static const std::vector<ExchangeForm> forms = {
        {"abc",      "",     "ABC",            ReadAbc,      WriteAbc,      Repeats::Followed},
        {"musicxml", "xml",  "MusicXML",       ReadMusicXml, WriteMusicXml, Repeats::Jumps   },
        {"mid",      "midi", "MIDI",           ReadMidi,     nullptr,       Repeats::Shown   },
        {"ly",       "",     "LilyPond",       nullptr,      WriteLilyPond, Repeats::Followed},
        {"txt",      "tab",  "text tablature", ReadTextTab,  WriteTextTab,  Repeats::Shown   },
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

std::vector<FoundTune> ReadForm(const ExchangeForm& form, std::string_view bytes)
{
    if (bytes.size() > kLargestForeignFile)
        throw ExchangeError("It is larger than 8 MB; divide it into smaller files.");
    return form.Read(bytes);
}

}  // namespace quillon
