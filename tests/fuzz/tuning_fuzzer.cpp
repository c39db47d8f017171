// Any bytes as a tuning file, and any clicks in the tuning form that edits it: a list that is
// written back unchanged, or a run-time error. Never anything else.
//
// Works in a scratch folder: folders on the command line have to be absolute.

#include "headless/scripted_platform.h"
#include "midi/tuning_form.h"
#include "support/temporary_directory.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

using namespace quillon;

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Only a list with more rows than there is room for stops the reading of a file.
void LoadFile(const std::string& path, int numStrings, const std::string& bytes)
{
    static Tunings tunings;
    WriteFileBytes(path, bytes);
    LoadActiveTuning(path, numStrings, tunings);
    Require(!LoadActiveTuning(path, numStrings, tunings));
    WriteFileBytes(path, bytes);
    try {
        const int count = LoadTunings(path, numStrings, tunings);
        Require(count <= kLastTuning + 1);
        Require(LoadTunings(path, numStrings, tunings) == count);
    } catch (const Fault& fault) {
        Require(fault.Number() == Error::SubscriptOutOfRange);
    }
}

/// What cmdSave has written reads back as the list of the form.
void CheckSaved(const std::string& path, const TuningForm& form, Tunings& tunings)
{
    for (const std::string& name : form.Combo1)
        if (name.find('"') != std::string::npos)
            return;
    static Tunings again;
    ItemReader reader(ReadFileBytes(path));
    const int count = ReadTunings(reader, form.design.NumStrings, again);
    Require(count == static_cast<int>(form.Combo1.size()));
    for (int i = 0; i < count; ++i) {
        Require(again[i].TuningName == tunings[i].TuningName);
        for (int s = 1; s <= form.design.NumStrings; ++s)
            Require(again[i].Pitch(s) == tunings[i].Pitch(s));
    }
}

void Click(TuningForm& form, Tunings& tunings, const std::string& path, FuzzedDataProvider& data)
{
    const int count = static_cast<int>(form.Combo1.size());
    switch (data.ConsumeIntegralInRange(0, 8)) {
    case 0:
        if (count > 0)
            form.Combo1Click(data.ConsumeIntegralInRange(0, count - 1));
        break;
    case 1:
        form.AddTitle = data.ConsumeRandomLengthString(40);
        break;
    case 2:
        form.Text1.at(data.ConsumeIntegralInRange<std::size_t>(0, form.Text1.size() - 1)) =
            data.ConsumeRandomLengthString(10);
        break;
    case 3:
        form.cmdAdd();
        break;
    case 4:
        form.cmdDelete();
        break;
    case 5:
        if (form.design.HasDefault)
            form.cmdDefault();
        break;
    case 6:
        form.cmdSave();
        CheckSaved(path, form, tunings);
        break;
    case 7:
        form.Text1Enter();
        break;
    case 8:
        form.AddTitleEnter();
        break;
    }
    for (std::size_t i = 0; i < form.Combo1.size(); ++i)
        Require(form.Combo1[i] == tunings[static_cast<int>(i)].TuningName);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const TemporaryDirectory folder;
    static const ScriptedSystem system(folder.Path());
    FuzzedDataProvider data(bytes, size);
    const TuningFormDesign& design = data.PickValueInArray(kTuningForms);
    const std::string path = folder.Path(FindMode(design.NumStrings)->TuningFile);
    const std::string file = data.ConsumeRandomLengthString(8000);
    LoadFile(path, design.NumStrings, file);
    WriteFileBytes(path, file);
    static Tunings tunings;
    tunings = {};
    TuningForm form(design, tunings, system);
    try {
        form.Show();
        while (data.remaining_bytes() > 0)
            Click(form, tunings, path, data);
    } catch (const Fault&) {
    }
    return 0;
}
