#pragma once

#include "Platform/Desktop/Painting/PixelGrid.h"
#include "Platform/Kit/Drawing.h"

#include <list>

#include <QImage>

class QPainter;

namespace platform::desktop {

// Paints lines of text and keeps pictures of those of late, as setting a text takes longer than a frame has.
// Main thread.
class TextPainter {
public:
    // In the pixels of `grid`, with letters made for `scale`, at which they stand exactly on pixels.
    void paint(QPainter& painter, const TextLine& line, const PixelGrid& grid, double scale);

private:
    struct Picture {
        TextLine line;
        double scale;
        QImage image;
        // In points: the text's advance, and where its baseline begins.
        double advance;
        double ascent;
    };

    const Picture& pictureOf(const TextLine& line, double scale);

    // The latest one first.
    std::list<Picture> pictures;
};

} // namespace platform::desktop
