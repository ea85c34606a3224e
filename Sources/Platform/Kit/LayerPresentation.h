#pragma once

#include "Platform/Kit/Drawing.h"
#include "Platform/Kit/Transform.h"

namespace platform {

// A layer's properties: as it holds them, or as they are shown at some time.
struct LayerState {
    // Of the middle, in the superlayer's coordinates, whose origin is its lower left corner.
    Point position;
    Size size;
    // Both about the position: first turned, by radians against the clock, then transformed.
    double rotation = 0;
    Transform transform;
    double opacity = 1;
    Color backgroundColor;
    double cornerRadius = 0;
    double borderWidth = 0;
    Color borderColor;
    bool masksToBounds = false;
    // A gradient, if there are colours; the points are in shares of the size: (0, 0.5) is the middle of the
    // left edge. Outside the points the end colours go on. As many locations as colours, or none for even
    // ones.
    std::vector<Color> colors;
    std::vector<double> locations;
    Point startPoint{0.5, 0};
    Point endPoint{0.5, 1};

    // Untransformed.
    Rect frame() const {
        return {position.x - size.width / 2, position.y - size.height / 2, size.width, size.height};
    }
    Rect bounds() const { return {0, 0, size.width, size.height}; }

    bool operator==(const LayerState&) const = default;
};

// A layer and all below it as they are shown at one time: a value that owes nothing to the layers it came
// from, and its colours are in components. It is painted so: moved, turned and transformed; then, as one
// group of its opacity and, if it masks or is turned, clipped to its rounded bounds: effect, background,
// gradient, symbols, button, text, sublayers in order, and the border on top, inside the edge. Background,
// gradient, effect and border have rounded corners also without masking.
struct LayerPresentation : LayerState {
    Drawing drawing;
    std::vector<LayerPresentation> sublayers;
};

} // namespace platform
