#pragma once

#include "Platform/Kit/LayerPresentation.h"

#include <QImage>
#include <QRect>

namespace platform::desktop {

// The gradient of a layer that lies at `bounds` among the pixels, faded to the opacity: what of it lies in
// `area`. Any thread.
QImage gradientPicture(const LayerState& layer, double opacity, const QRectF& bounds, const QRect& area);

} // namespace platform::desktop
