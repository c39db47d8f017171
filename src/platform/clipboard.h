// The system's clipboard, for pictures.

#pragma once

namespace quillon {

class Drawing;

/// Part of a page, in pixels of the screen.
struct PagePart {
    double X, Y, Width, Height;
};

class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// Twips to a pixel of the screen.
    virtual double TwipsPerPixelX() const = 0;
    virtual double TwipsPerPixelY() const = 0;

    /// Puts a picture of a part of a page, which is drawn in twips, on the clipboard. The part
    /// fills the picture; the picture's size is in pixels of the screen too.
    virtual void SetPicture(const Drawing& page, const PagePart& part, double width,
                            double height) = 0;
};

}  // namespace quillon
