// Paints a drawing on any of Qt's devices.

#pragma once

#include "notation/look.h"
#include "platform/renderer.h"

class QPainter;

namespace quillon {

/// A pen's dot, in twips: a pixel of a 96 dpi screen, and a dot of a 300 dpi printer. Whatever the
/// device, a pen is so many dots wide, so that a drawing looks the same at every density.
constexpr double kScreenDot = 15;
constexpr double kPrinterDot = 4.8;

struct PaintStyle {
    double UnitsPerPoint;  // kPoints or kTwips, what the drawing counts in
    double Dot = kScreenDot;
    bool Crisp = false;         // upright and level lines fill whole pixels: on a screen
    bool SignOutlines = false;  // notation signs are no text, so that they copy as nothing
    Look As = Look::Plain;
};

/// The strokes that Paint paints.
std::vector<Stroke> StrokesFor(const Drawing& drawing, const PaintStyle& style);

/// The part of a page that is shown, in twips: all of it, or no more than its strokes cover.
Box PartOf(const Drawing& page, const PageChoices& choices, const PaintStyle& style);

/// The painter works in twips. What is drawn in xor or invert mode comes last, and shows only on
/// pixels. Operations that have no finite place or size are left out.
void Paint(QPainter& painter, const Drawing& drawing, const PaintStyle& style);

/// A line of `width` twips that fills whole pixels; one that is thinner than these is paler.
void PaintCrispLine(QPainter& painter, double x1, double y1, double x2, double y2, double width);

}  // namespace quillon
