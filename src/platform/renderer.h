// Pages as PDF, SVG and PNG, and MIDI files as sound: the exports that need a toolkit.

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quillon {

class Drawing;
class TextMetrics;
enum class Look;

/// How pages are made.
struct PageChoices {
    Look As{};
    double Width = 0;  // of the paper, twips
    double Height = 0;
    bool Crop = false;      // leave out what is white around the music
    double Dpi = 0;         // of a PNG
    bool KeepText = false;  // texts of an SVG are texts, not outlines
    std::string Title;
    std::string Author;  // of a PDF, as below
    std::string Subject;
};

class Renderer {
public:
    virtual ~Renderer() = default;

    /// The real fonts' metrics.
    virtual const TextMetrics& Metrics() const = 0;

    virtual bool HasFont(const std::string& name) const = 0;

    // The bytes of a file. Pages are drawn in twips. With the environment's
    // SOURCE_DATE_EPOCH (seconds since 1970) as its date, a PDF is the same bytes each time.
    virtual std::string Pdf(const std::vector<Drawing>& pages,
                            const PageChoices& choices) const = 0;
    virtual std::string Svg(const Drawing& page, const PageChoices& choices) const = 0;
    virtual std::string Png(const Drawing& page, const PageChoices& choices) const = 0;

    /// Writes a sound file at `path`; `format` is "wav", "ogg" or "mp3". `progress` is told the
    /// part done, 0..1. A std::runtime_error on failure, after which a part of it may be there.
    virtual void Sound(const std::string& midiBytes, const std::string& path,
                       const std::string& format,
                       const std::function<void(double)>& progress) const = 0;
};

}  // namespace quillon
