#pragma once

#include "Platform/Kit/Drawing.h"

#include <memory>
#include <string_view>

#include <QFont>
#include <QTextLayout>

namespace platform::desktop {

QFont fontFor(const Font& font);

// A text set in the interface's font, with all that a font lacks from others: as one line unless it is
// wrapped. The same for measuring and drawing, whatever the scale. Main thread.
class SetText {
public:
    SetText(std::string_view text, const Font& font);
    // As much of the text as has room in front of an ellipsis, or all of it.
    static SetText truncated(std::string_view text, const Font& font, double width);

    // In as many lines as it takes, each aligned within the width.
    static SetText wrapped(std::string_view text, const Font& font, double width, TextAlignment alignment);

    // The advance, or the width it was wrapped to, and the height of the font's lines.
    Size size() const;
    double ascent() const;
    // From the left end of the first baseline.
    void draw(QPainter& painter, const QPointF& start) const;

private:
    SetText(std::string_view text, const Font& font, double width, QTextOption::WrapMode wrapMode,
            Qt::Alignment alignment);

    double width;
    // It can't be moved.
    std::unique_ptr<QTextLayout> layout;
};

} // namespace platform::desktop
