// What the bytes of MIDI messages mean, for all who write or read them.

#pragma once

namespace quillon {

// Status bytes; the channel, 0 to 15, is added.
constexpr int kNoteOn = 0x90;
constexpr int kProgramChange = 0xC0;

/// Program change and channel pressure have one data byte, all other channel messages two.
constexpr bool HasOneDataByte(int status)
{
    return status >= kProgramChange && status < 0xE0;
}

constexpr double kMicrosecondsPerSecond = 1e6;

}  // namespace quillon
