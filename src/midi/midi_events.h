// What a MIDI file sends to a synthesizer, and when.

#pragma once

#include <string_view>
#include <vector>

namespace quillon {

/// A channel message.
struct TimedEvent {
    double Seconds;
    int Status;
    int Data1;
    int Data2;  // 0 if it has none
};

struct TimedEvents {
    std::vector<TimedEvent> Events;  // in order of time
    double End = 0;                  // of the file, in seconds
};

/// The events of all tracks of a file that MidiFileWriter has made; of anything else, whatever can
/// be read.
TimedEvents TimedEventsOf(std::string_view bytes);

}  // namespace quillon
