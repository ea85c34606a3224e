#pragma once

#include "Platform/Desktop/Painting/PixelGrid.h"
#include "Platform/Kit/LayerPresentation.h"

namespace platform::desktop {

// The pixels in which the two may look different; they are the same layer at two times. The grid is that of
// what holds the layer. Any thread.
QRectF changedArea(const LayerPresentation& before, const LayerPresentation& after, const PixelGrid& grid);

} // namespace platform::desktop
