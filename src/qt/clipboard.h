// The desktop's clipboard.

#pragma once

#include "platform/clipboard.h"
#include "platform/settings.h"
#include "qt/paint.h"

namespace quillon {

class QtClipboard : public Clipboard {
public:
    /// The settings tell the look of pictures. They must outlive the clipboard.
    explicit QtClipboard(const Settings& theSettings) : settings(theSettings) {}

    double TwipsPerPixelX() const override { return kScreenDot; }
    double TwipsPerPixelY() const override { return kScreenDot; }

    /// A part of no size only clears the clipboard.
    void SetPicture(const Drawing& page, const PagePart& part, double width,
                    double height) override;

private:
    const Settings& settings;
};

}  // namespace quillon
