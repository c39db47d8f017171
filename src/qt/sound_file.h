// MIDI files rendered as sound files, faster than real time.

#pragma once

#include <functional>
#include <string>

namespace quillon {

/// Writes a stereo file at `path`: "wav" with 16 bits a sample, "ogg" (Vorbis) or "mp3". Its
/// loudest sample is at -1 dB of full scale, and half a second follows the last event. `progress`
/// hears the part done, 0..1. A std::runtime_error with the reason if it cannot be done; what was
/// written by then stays.
void RenderSound(const std::string& midiBytes, const std::string& path, const std::string& format,
                 const std::function<void(double)>& progress = {});

}  // namespace quillon
