// How a drawing looks: with which pen each of its operations is painted, and where the stroke ends.
//
// The passes say what is drawn and where, and a drawing log tells that alone. A look makes strokes
// of it, in the drawing's units, for whatever device paints them.

#pragma once

#include "notation/draw_surface.h"
#include "notation/drawing.h"

#include <optional>
#include <vector>

namespace quillon {

enum class Look {
    Plain,     // the pens that the passes set, in device dots
    Engraved,  // by role, in string gaps: thin strings that leave room for the figures, thick beams
};

struct Point {
    double X = 0;
    double Y = 0;
};

/// What a device paints. Lines end flat, at their coordinates.
struct Stroke {
    Operation Drawn;             // at the place where it is painted
    double Pen = 0;              // width; 0: a circle without an outline
    std::vector<Point> Outline;  // not empty: of the area that is filled in place of an arc
};

/// What a look needs to know of drawing and device.
struct LookValues {
    Look As = Look::Plain;
    double Dot = 15;           // a pen's dot, in the drawing's units
    double UnitsPerPoint = 1;  // of the drawing
};

/// A rectangle on the drawing.
struct Box {
    double Left;
    double Top;
    double Right;
    double Bottom;
};

/// The strokes of the operations, in their order. What is drawn in xor or invert mode stays as it
/// is in every look.
std::vector<Stroke> StrokesOf(const Drawing& drawing, const LookValues& values,
                              const TextMetrics& metrics);

/// What the strokes cover; nothing if there is nothing to be seen.
std::optional<Box> InkOf(const std::vector<Stroke>& strokes, double unitsPerPoint,
                         const TextMetrics& metrics);

}  // namespace quillon
