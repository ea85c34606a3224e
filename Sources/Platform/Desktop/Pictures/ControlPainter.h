#pragma once

#include "Platform/Kit/Drawing.h"

#include <QRectF>

class QPainter;

namespace platform::desktop {

// Paints what layers hold that looks as the desktop's own does. Main thread.
class ControlPainter {
public:
    virtual ~ControlPainter() = default;

    // At a place in pixels, of which there are `scale` to a point.
    virtual void paint(QPainter& painter, const ButtonLook& look, const QRectF& place, double scale) = 0;
    virtual void paint(QPainter& painter, const SymbolPicture& symbol, const QRectF& place) = 0;
};

} // namespace platform::desktop
