#pragma once

#include "Platform/Foundation/Bundle.h"

#include <memory>
#include <string>

#include <QColor>
#include <QIcon>
#include <QRectF>

class QPainter;
class QSvgRenderer;

namespace platform::desktop {

// A drawing of the bundle's, Symbols/<name>.svg, in one colour: it stands where the file says currentColor.
// Nothing is drawn where the file is missing or is no drawing. Main thread; copies share what was read.
class SymbolDrawing {
public:
    SymbolDrawing(const Bundle& bundle, const std::string& name, const QColor& color);

    // As large as the rectangle allows, in its middle.
    void paint(QPainter& painter, const QRectF& rect) const;

    // Drawn anew for each size and scale.
    QIcon icon() const;

private:
    std::shared_ptr<QSvgRenderer> renderer;
};

} // namespace platform::desktop
