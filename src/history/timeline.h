// The steps of a run and the moment that they have led to, as a value.
//
// It changes by entries only, so the same entries lead to the same timeline: the journal keeps
// them, and replays them after a kill. Deltas form one unbroken chain.

#pragma once

#include "history/delta.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// What one event did.
struct Event {
    struct Beginning {
        std::string Name;
        bool BeginsTune = false;
        bool InNoFile = false;  // the tune that begins is work, in no file so far
    };

    std::optional<Beginning> Begins;  // a step
    bool Moving = false;              // the delta is moving about
    bool SavedBefore = false;         // the tune was saved as it was before the event
    bool SavedAfter = false;          // the tune was saved as the event left it
    std::string Delta;                // "" if nothing differs

    bool IsEmpty() const { return !Begins && !SavedBefore && !SavedAfter && Delta.empty(); }
};

struct Step {
    std::string Name;
    std::string Deltas;      // up to the next step, each behind its length
    std::string Detour;      // moving about since the steps after this one were undone
    std::size_t Moving = 0;  // length of what of Deltas is moving about, at their end
    bool BeginsTune = false;
    std::string Written;  // if it begins a tune: the tune's work as its file has it, see WorkBytes;
                          // "" if it is in none
};

class Timeline {
public:
    /// `written`: the work of the present tune as its file has it. `detour`: of the last step
    /// before the beginning, if steps after it were undone.
    Timeline(Moment start, std::string written, std::string detour = {});

    /// The moment after the last event.
    const Moment& Last() const { return last; }
    Moment& Last() { return last; }

    int UndoCount() const { return position; }
    int RedoCount() const { return static_cast<int>(steps.size()) - 1 - position; }
    std::string UndoName() const;
    std::string RedoName() const;

    /// An event whose delta `Last` has already gone along.
    void Add(const Event& event);

    /// The moment to which undoing `back` steps leads, or redoing -`back`; not for 0.
    Moment MomentAt(int back) const;

    /// Goes there. `moment` is MomentAt(back).
    void GoBack(int back, Moment moment);

    /// Step 1..UndoCount() is done, those after it are undone.
    const Step& At(int place) const { return steps[static_cast<std::size_t>(place)]; }

    /// The moment in which step `place` ended; 0: the one before all steps.
    Moment MomentAfter(int place) const;

    /// The work of the tune that is present after step `place`, as its file has it.
    const std::string& WrittenAfter(int place) const { return At(TuneBegunAt(place)).Written; }

    /// A step that leads from here to where `run` began.
    Step StepTo(const Timeline& run, std::string name) const;

    /// Does a step that was done in another run, or is done anew from a journal.
    void Append(Step step);

    /// Appends a step that was done and undone.
    void AppendUndone(Step step);

    /// The step that began the present tune, 0 if none did.
    int TuneBegunBy() const { return TuneBegunAt(position); }

    /// Whether the table differs from its file: as last saved, opened or begun.
    bool Changed() const { return changed; }

    /// How many bytes the steps take.
    std::size_t Size() const;

private:
    Step& At(int place) { return steps[static_cast<std::size_t>(place)]; }
    int TuneBegunAt(int place) const;
    void CompareWithFile();
    void BeginStep(const Event::Beginning& beginning);
    void AppendDelta(std::string_view delta, bool moving);
    void Shorten(std::string& deltas, std::size_t from) const;

    Moment last;
    std::vector<Step> steps;  // 0 is no step: what happened before the first one
    int position = 0;         // the step that was done last
    bool changed = false;
    Int16 comparedLastNote;  // LastNote when `changed` was worked out
};

/// Goes along deltas, each behind its length. A DamagedDelta leaves the moment half changed.
void ApplyAll(std::string_view deltas, Direction direction, Moment& moment);

}  // namespace quillon
