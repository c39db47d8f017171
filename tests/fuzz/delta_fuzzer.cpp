// Any bytes as a delta: they are refused, or lead to a moment in which the editor goes on.
//
// The first byte says which way they are gone along. The second picks a real delta into which the
// others are written, three for a change: where, twice, and what. 0 takes them as they are.

#include "headless/scenario.h"
#include "history/bytes.h"
#include "shell/steps.h"
#include "support/temporary_directory.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>

using namespace quillon;

namespace {

constexpr const char* kEvents[] = {
    "type 3",          "key Enter",     "key F1",
    "type Am",         "key Enter",     "type 5^",
    "key Enter",       "key F7",        "type 1.",
    "key Enter",       "press cmdNext", "menu mnuInsMeas",
    "type 7",          "key Enter",     "press cmdNext",
    "copy 1 1",        "menu mnuPaste", "menu mnuNoteBefore",
    "menu mnuDelMeas", "strings 4",
};

constexpr const char* kAfterwards[] = {
    "type 5",    "key Enter",         "key Left", "key Backspace", "press cmdNext",
    "toolbar 4", "press cmdPrevious", "key F4",   "click 90 50",   "menu mnuDelMeas",
    "state",
};

struct Joint {
    Moment Before;
    Moment After;
    std::string Delta;
};

/// The moments that the events lead through, with the deltas between them.
std::vector<Joint> Joints()
{
    std::ostringstream output;
    Scenario scenario(".", output);
    const Values values = ValuesOf(scenario.Window());
    std::vector<Joint> joints;
    for (const char* event : kEvents) {
        const Moment before(values);
        scenario.Play(event);
        Moment moment = before;
        const Moment after(values);
        Changes changes;
        std::string delta = TakeDelta(values, after.ScratchFiles, moment, false, changes);
        joints.push_back({before, after, std::move(delta)});
    }
    return joints;
}

std::string Damaged(std::string delta, const std::uint8_t* data, std::size_t size)
{
    for (std::size_t i = 0; i + 2 < size && !delta.empty(); i += 3)
        delta[(data[i] + 256U * data[i + 1]) % delta.size()] = static_cast<char>(data[i + 2]);
    return delta;
}

void GoOn(Moment& moment)
{
    std::ostringstream output;
    Scenario scenario(".", output);
    moment.PutBack(ValuesOf(scenario.Window()));
    for (const char* line : kAfterwards)
        if (!scenario.Play(line))
            break;  // a run-time error
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const TemporaryDirectory folder;
    static const std::vector<Joint> joints = Joints();
    if (size < 2)
        return 0;
    const Joint& joint = joints[data[1] % joints.size()];
    const bool forward = data[0] % 2 == 0;
    Moment moment = forward ? joint.Before : joint.After;
    const std::string bytes = data[1] == 0
                                  ? std::string(reinterpret_cast<const char*>(data) + 2, size - 2)
                                  : Damaged(joint.Delta, data + 2, size - 2);
    try {
        Apply(bytes, forward ? Direction::Forward : Direction::Backward, moment);
    } catch (const DamagedDelta&) {
        return 0;
    }
    if (!moment.IsSound())
        std::abort();
    GoOn(moment);
    return 0;
}
