// Any bytes as a file of another program: tunes that can be played and written back, or an
// ExchangeError. The first byte says the form and the instrument.

#include "exchange/forms.h"
#include "exchange/table_music.h"
#include "store/tune_file.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace quillon;

namespace {

/// What a file of an import holds is read back as it is.
void CheckRoundTrip(const Tune& tune)
{
    const std::string bytes = TuneBytes(tune);
    ItemReader reader(bytes);
    static Tune again;
    again.Table.Clear();
    ReadTune(reader, again);
    if (TuneBytes(again) != bytes)
        std::abort();
}

void Import(FoundTune& found, int strings)
{
    static Tune tune;
    tune.NumStrings = strings;
    try {
        MakeTune(std::move(found.Tune), {DefaultTunings(strings), {}, 0, 0, 24}, tune, found.Said);
    } catch (const ExchangeError&) {
        return;
    }
    CheckRoundTrip(tune);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto& forms = ExchangeForms();
    const ExchangeForm& form = forms[data[0] / 3 % forms.size()];
    if (!form.Read)
        return 0;
    try {
        for (FoundTune& found : ReadForm(form, {reinterpret_cast<const char*>(data) + 1, size - 1}))
            if (found.Failure.empty())
                Import(found, 4 + data[0] % 3);
    } catch (const ExchangeError&) {
    }
    return 0;
}
