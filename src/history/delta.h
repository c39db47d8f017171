// A delta: what differs between one moment and the next, as bytes.
//
// It holds each changed value before and after, so it works in both directions. The same bytes
// are in the history and in the journal. Applied to a moment that it does not start from, or
// damaged, it is rejected, so it never produces a wrong tune.

#pragma once

#include "history/moment.h"

#include <string>
#include <string_view>

namespace quillon {

/// What a delta changes, as far as it distinguishes a step from moving about.
struct Changes {
    bool Work = false;      // a record's, but for what a redraw works out anew
    int Record = -1;        // the record in which it is
    bool OneRecord = true;  // in no other one
    bool Name = false;      // the file's name or the instrument
    bool Page = false;      // fonts or margins

    void InRecord(int record);
};

/// The delta from `last` to the values as they are, "" if nothing differs. Brings `last` there.
/// `samePicture`: the staff's picture is known not to have changed.
std::string TakeDelta(const Values& live, const Scratch& scratch, Moment& last, bool samePicture,
                      Changes& changes);

enum class Direction { Forward, Backward };

/// Applies a delta. A DamagedDelta leaves the moment half changed.
void Apply(std::string_view delta, Direction direction, Moment& moment);

}  // namespace quillon
