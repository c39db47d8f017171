#include "midi/midi_events.h"

#include "midi/byte_reader.h"
#include "midi/midi_bytes.h"

#include <algorithm>
#include <cstdint>

namespace quillon {

namespace {

constexpr int kMeta = 0xFF;
constexpr int kSetTempo = 0x51;
constexpr int kUntoldTempo = 500000;  // microseconds per quarter note

struct TickedEvent {
    std::int64_t Tick;
    int Status;  // kMeta: a tempo in Data1, or the end of a track, 0
    int Data1;
    int Data2;
};

void ReadTrack(ByteReader reader, std::vector<TickedEvent>& events)
{
    std::int64_t tick = 0;
    while (!reader.AtEnd()) {
        tick += reader.VariableLength();
        TickedEvent event{.Tick = tick, .Status = reader.Byte(), .Data1 = 0, .Data2 = 0};
        if (event.Status == kMeta) {
            const int kind = reader.Byte();
            ByteReader content(reader.Take(reader.VariableLength()));
            if (kind == kSetTempo)
                event.Data1 = static_cast<int>(content.Number(3));
        } else {
            event.Data1 = reader.Byte();
            event.Data2 = HasOneDataByte(event.Status) ? 0 : reader.Byte();
        }
        events.push_back(event);
    }
}

}  // namespace

TimedEvents TimedEventsOf(std::string_view bytes)
{
    constexpr int kHeaderBeforeDivision = 12;
    ByteReader file(bytes);
    file.Take(kHeaderBeforeDivision);
    const auto division = static_cast<double>(file.Number(2));
    std::vector<TickedEvent> events;
    while (!file.AtEnd() && division > 0) {
        file.Take(4);
        ReadTrack(ByteReader(file.Take(file.Number(4))), events);
    }
    std::ranges::stable_sort(events, {}, &TickedEvent::Tick);

    TimedEvents timed;
    double secondsPerTick = kUntoldTempo / division / kMicrosecondsPerSecond;
    std::int64_t last = 0;
    for (const TickedEvent& event : events) {
        timed.End += static_cast<double>(event.Tick - last) * secondsPerTick;
        last = event.Tick;
        if (event.Status != kMeta)
            timed.Events.push_back({timed.End, event.Status, event.Data1, event.Data2});
        else if (event.Data1 > 0)
            secondsPerTick = event.Data1 / division / kMicrosecondsPerSecond;
    }
    return timed;
}

}  // namespace quillon
