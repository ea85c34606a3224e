#include "Platform/Desktop/Painting/TextPainter.h"

#include "Platform/Desktop/Painting/ColorOf.h"
#include "Platform/Desktop/Painting/SetText.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

namespace platform::desktop {
namespace {

constexpr std::size_t kept = 8;
// The longest picture, in pixels: beyond any screen.
constexpr double longest = 8192;

bool looksAlike(const TextLine& one, const TextLine& other) {
    return one.text == other.text && one.font == other.font && one.color == other.color
           && one.lineBreakMode == other.lineBreakMode && one.alignment == other.alignment
           && (one.lineBreakMode == LineBreakMode::clipping || one.place.width == other.place.width);
}

SetText textOf(const TextLine& line) {
    switch (line.lineBreakMode) {
    case LineBreakMode::truncatingTail:
        return SetText::truncated(line.text, line.font, line.place.width);
    case LineBreakMode::wordWrapping:
        return SetText::wrapped(line.text, line.font, line.place.width, line.alignment);
    case LineBreakMode::clipping:
        break;
    }
    return {line.text, line.font};
}

// Pixels around the line, for accents and letters that reach out of it.
int marginOf(const Font& font, double scale) {
    return static_cast<int>(std::ceil(font.size * scale / 2));
}

} // namespace

void TextPainter::paint(QPainter& painter, const TextLine& line, const PixelGrid& grid, double scale) {
    if (line.text.empty())
        return;
    const auto& picture = pictureOf(line, scale);
    const double room = line.place.width - picture.advance;
    const double x = line.place.x + (line.alignment == TextAlignment::center ? room / 2 : 0);
    const auto start = grid.pixelOf({x, line.place.maxY() - picture.ascent});
    const int margin = marginOf(line.font, scale);
    const QPoint startInPicture(margin, margin + qRound(picture.ascent * scale));
    if (grid.scale == Size{scale, scale}) {
        painter.drawImage(start.toPoint() - startInPicture, picture.image);
        return;
    }
    const double widths = grid.scale.width / scale;
    const double heights = grid.scale.height / scale;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(start);
    painter.scale(widths, heights);
    painter.drawImage(-startInPicture, picture.image);
    painter.restore();
}

const TextPainter::Picture& TextPainter::pictureOf(const TextLine& line, double scale) {
    const auto known = std::ranges::find_if(pictures, [&](const Picture& picture) {
        return picture.scale == scale && looksAlike(picture.line, line);
    });
    if (known != pictures.end()) {
        pictures.splice(pictures.begin(), pictures, known);
        return pictures.front();
    }
    const auto text = textOf(line);
    const auto size = text.size();
    const int margin = marginOf(line.font, scale);
    QImage image(static_cast<int>(std::ceil(std::min(size.width * scale, longest))) + 2 * margin,
                 static_cast<int>(std::ceil(size.height * scale)) + 2 * margin,
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(colorOf(line.color));
    painter.translate(margin, margin + qRound(text.ascent() * scale));
    painter.scale(scale, scale);
    text.draw(painter, {0, 0});
    painter.end();
    pictures.push_front({line, scale, image, size.width, text.ascent()});
    if (pictures.size() > kept)
        pictures.pop_back();
    return pictures.front();
}

} // namespace platform::desktop
