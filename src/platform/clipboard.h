// The system's clipboard, for pictures.

#pragma once

namespace quillon {

class Drawing;

class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// Twips to a pixel of the screen.
    virtual double TwipsPerPixelX() const = 0;
    virtual double TwipsPerPixelY() const = 0;

    /// Puts a picture of part of a page on the clipboard. The page is drawn in twips; the part
    /// begins at (x, y) and has the given size, all in pixels of the screen.
    virtual void SetPicture(const Drawing& page, double x, double y, double width,
                            double height) = 0;
};

}  // namespace quillon
