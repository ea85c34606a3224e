#pragma once

#include "Platform/Kit/Font.h"
#include "Platform/Kit/Geometry.h"

#include <memory>
#include <string_view>

#include <QFont>
#include <QTextLayout>

namespace platform::desktop {

QFont fontFor(const Font& font);

// A text set as one line of the interface's font, with all that a font lacks from others. The same for
// measuring and drawing, whatever the scale. Main thread.
class SetText {
public:
    SetText(std::string_view text, const Font& font);
    // As much of the text as has room in front of an ellipsis, or all of it.
    static SetText truncated(std::string_view text, const Font& font, double width);

    // The advance, and the height of the font's lines.
    Size size() const;
    double ascent() const;
    // From the left end of the baseline.
    void draw(QPainter& painter, const QPointF& start) const;

private:
    // It can't be moved.
    std::unique_ptr<QTextLayout> layout;
};

} // namespace platform::desktop
