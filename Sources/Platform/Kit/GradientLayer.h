#pragma once

#include "Platform/Kit/Layer.h"

namespace platform {

// A layer filled with a run of colours. Main thread.
class GradientLayer : public Layer {
public:
    const std::vector<Color>& colors() const { return model.colors; }
    void setColors(const std::vector<Color>& colors) { set("colors", &LayerState::colors, colors); }
    // Shares of the way from the start point to the end point, rising; one for each colour.
    const std::vector<double>& locations() const { return model.locations; }
    void setLocations(const std::vector<double>& locations) {
        set("locations", &LayerState::locations, locations);
    }
    // In shares of the size; they do not move.
    const Point& startPoint() const { return model.startPoint; }
    void setStartPoint(const Point& point) {
        model.startPoint = point;
        setNeedsDisplay();
    }
    const Point& endPoint() const { return model.endPoint; }
    void setEndPoint(const Point& point) {
        model.endPoint = point;
        setNeedsDisplay();
    }
};

} // namespace platform
