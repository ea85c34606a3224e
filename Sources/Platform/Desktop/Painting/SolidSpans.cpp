#include "Platform/Desktop/Painting/SolidSpans.h"

#include <algorithm>

namespace platform::desktop {

std::vector<QRect> solidSpans(const QImage& picture, int density) {
    std::vector<QRect> result;
    const auto isSolid = [&](QRgb pixel) { return qAlpha(pixel) >= density; };
    for (int y = 0; y < picture.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        const auto* end = row + picture.width();
        const auto* first = std::find_if(row, end, isSolid);
        if (first == end)
            continue;
        while (!isSolid(end[-1]))
            --end;
        const QRect span(static_cast<int>(first - row), y, static_cast<int>(end - first), 1);
        // A row like the one above makes that one taller.
        if (!result.empty() && result.back().x() == span.x() && result.back().width() == span.width()
            && result.back().bottom() + 1 == y)
            result.back().setBottom(y);
        else
            result.push_back(span);
    }
    return result;
}

} // namespace platform::desktop
