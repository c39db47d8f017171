#include "qt/sound_file.h"

#include "qt/synth.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <sndfile.h>
#include <span>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quillon {

namespace {

constexpr int kRate = 44100;
constexpr int kBlock = 64;   // frames between which the synthesizer takes events
constexpr int kBlocks = 64;  // in a piece; the Vorbis writer cannot take a long one
constexpr int kTail = kRate / 2;
constexpr int kFade = kRate / 10;            // the end of the tail
constexpr double kLongestWav = 6 * 60 * 60;  // seconds; its sizes have 32 bits
constexpr double kPeak = 0.891;              // -1 dB
constexpr float kSilence = 1e-6F;            // the room hums a hundred times softer
constexpr double kGain = 0.2;                // nothing is clipped before it is scaled

/// Frames of two samples, left and right.
using Piece = std::span<float>;

/// One playing of a file's events, from its beginning to the end of the tail. It does not leave
/// that to the synthesizer's player, whose clock counts whole milliseconds.
class Rendering {
public:
    explicit Rendering(const TimedEvents& theEvents)
        : events(theEvents), settings(MakeSettings(kGain)), synth(MakeSynth(settings.get()))
    {
        if (!synth)
            throw std::runtime_error("No SoundFont was found.");
        stage = Stage(synth.get(), events);
    }

    /// The next frames; empty after the last.
    Piece Next()
    {
        std::size_t size = 0;
        for (int i = 0; i < kBlocks && at < end; ++i, size += 2 * kBlock)
            RenderBlock(frames.data() + size);
        return {frames.data(), size};
    }

    /// The part that has been rendered, 0..1.
    double Done() const
    {
        return std::min(1.0, static_cast<double>(at) / static_cast<double>(end));
    }

private:
    /// Events take effect at the block's beginning, where they are at most half a block off.
    void RenderBlock(float* block)
    {
        const double soon = (static_cast<double>(at) + kBlock / 2.0) / kRate;
        for (; next < events.Events.size() && events.Events[next].Seconds < soon; ++next)
            stage.Send(events.Events[next]);
        fluid_synth_write_float(synth.get(), kBlock, block, 0, 2, block, 1, 2);
        for (int frame = 0; frame < kBlock; ++frame) {
            const float fade = std::clamp(static_cast<float>(end - at - frame) / kFade, 0.0F, 1.0F);
            block[2 * frame] *= fade;
            block[2 * frame + 1] *= fade;
        }
        at += kBlock;
    }

    const TimedEvents& events;
    FluidPtr<fluid_settings_t> settings;
    FluidPtr<fluid_synth_t> synth;
    Stage stage;
    std::array<float, std::size_t{2} * kBlock * kBlocks> frames{};
    std::size_t next = 0;  // event
    std::int64_t at = 0;   // frames
    std::int64_t end = static_cast<std::int64_t>(events.End * kRate) + kTail;
};

int FormatNumber(const std::string& format)
{
    if (format == "ogg")
        return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    if (format == "mp3")
        return SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
    return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
}

/// A file that remembers why it could not be written, which the encoders do not tell.
class OutputFile {
public:
    explicit OutputFile(const std::string& path)
        : descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666))
    {
        Note(descriptor >= 0);
        Check();
    }

    ~OutputFile() { close(descriptor); }

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Fails with the first reason that there was.
    void Check() const
    {
        if (failure != 0)
            throw std::system_error(failure, std::generic_category(),
                                    "The sound file cannot be written");
    }

    static SF_VIRTUAL_IO Calls()
    {
        return {
            .get_filelen = [](void* self) { return Of(self).Length(); },
            .seek = [](sf_count_t offset, int whence,
                       void* self) { return Of(self).Seek(offset, whence); },
            .read = [](void* to, sf_count_t count, void* self) { return Of(self).Read(to, count); },
            .write = [](const void* from, sf_count_t count,
                        void* self) { return Of(self).Write(from, count); },
            .tell = [](void* self) { return Of(self).Seek(0, SEEK_CUR); }};
    }

private:
    static OutputFile& Of(void* self) { return *static_cast<OutputFile*>(self); }

    void Note(bool done)
    {
        if (!done && failure == 0)
            failure = errno;
    }

    sf_count_t Length()
    {
        struct stat status {};
        Note(fstat(descriptor, &status) == 0);
        return status.st_size;
    }

    sf_count_t Seek(sf_count_t offset, int whence)
    {
        const sf_count_t place = lseek(descriptor, offset, whence);
        Note(place >= 0);
        return place;
    }

    sf_count_t Read(void* to, sf_count_t count)
    {
        const sf_count_t done = read(descriptor, to, static_cast<std::size_t>(count));
        Note(done >= 0);
        return done;
    }

    sf_count_t Write(const void* from, sf_count_t count)
    {
        sf_count_t done = 0;
        while (done < count && failure == 0) {
            const ssize_t written = write(descriptor, static_cast<const char*>(from) + done,
                                          static_cast<std::size_t>(count - done));
            Note(written >= 0 || errno == EINTR);
            done += std::max<ssize_t>(written, 0);
        }
        return done;
    }

    int descriptor;
    int failure = 0;  // an errno
};

struct CloseSound {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

/// A sound file that is being written.
class SoundFile {
public:
    SoundFile(const std::string& path, const std::string& format) : output(path)
    {
        SF_INFO info{};
        info.samplerate = kRate;
        info.channels = 2;
        info.format = FormatNumber(format);
        SF_VIRTUAL_IO calls = OutputFile::Calls();
        file.reset(sf_open_virtual(&calls, SFM_WRITE, &info, &output));
        output.Check();
        if (!file)
            throw std::runtime_error("The sound file cannot be written: " +
                                     std::string(sf_strerror(nullptr)));
        Choose(format);
    }

    void Write(Piece piece)
    {
        sf_writef_float(file.get(), piece.data(), static_cast<sf_count_t>(piece.size() / 2));
        output.Check();
    }

    void Close()
    {
        file.reset();
        output.Check();
    }

private:
    /// A constant bit rate would make MP3s begin late: nothing tells players the encoder's delay.
    void Choose(const std::string& format)
    {
        if (format == "ogg") {
            double quality = 0.6;  // 0 to 1, 1 is best
            sf_command(file.get(), SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof quality);
        } else if (format == "mp3") {
            int mode = SF_BITRATE_MODE_VARIABLE;
            double compression = 0.3;  // 0 to 1, 1 is smallest
            sf_command(file.get(), SFC_SET_BITRATE_MODE, &mode, sizeof mode);
            sf_command(file.get(), SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression);
        }
    }

    OutputFile output;
    std::unique_ptr<SNDFILE, CloseSound> file;
};

/// Plays the events, and hands out what is heard, piece by piece.
void Render(const TimedEvents& events, const std::function<void(double)>& progress,
            const std::function<void(Piece)>& take)
{
    Rendering rendering(events);
    for (Piece piece = rendering.Next(); !piece.empty(); piece = rendering.Next()) {
        take(piece);
        progress(rendering.Done());
    }
}

float Loudest(Piece piece)
{
    const auto [low, high] = std::ranges::minmax(piece);
    return std::max(-low, high);
}

}  // namespace

/// In two passes, the first of which finds out how loud it is: a long tune's sound is too large to
/// be kept.
void RenderSound(const std::string& midiBytes, const std::string& path, const std::string& format,
                 const std::function<void(double)>& progress)
{
    if (!IsMidiFile(midiBytes))
        throw std::runtime_error("The file is not a MIDI file.");
    const auto tell = [&](double part) {
        if (progress)
            progress(part);
    };
    const TimedEvents events = TimedEventsOf(midiBytes);
    if (format == "wav" && events.End > kLongestWav)
        throw std::runtime_error("A WAV file cannot last longer than six hours; Ogg and MP3 can.");
    float peak = 0;
    Render(
        events, [&](double part) { tell(part / 2); },
        [&](Piece piece) { peak = std::max(peak, Loudest(piece)); });
    const float factor = peak > kSilence ? static_cast<float>(kPeak) / peak : 1;
    SoundFile file(path, format);
    Render(
        events, [&](double part) { tell((1 + part) / 2); },
        [&](Piece piece) {
            for (float& sample : piece)
                sample *= factor;
            file.Write(piece);
        });
    file.Close();
}

}  // namespace quillon
