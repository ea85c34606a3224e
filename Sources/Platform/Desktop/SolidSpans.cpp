#include "Platform/Desktop/SolidSpans.h"

#include <algorithm>

namespace platform::desktop {
namespace {

void addSpans(const QRgb* row, int width, int y, std::vector<xcb_rectangle_t>& spans) {
    const auto isSolid = [&](int x) { return qAlpha(row[x]) >= 128; };
    for (int x = 0; x < width; ++x) {
        if (!isSolid(x))
            continue;
        const int start = x;
        while (x < width && isSolid(x))
            ++x;
        spans.push_back({static_cast<std::int16_t>(start), static_cast<std::int16_t>(y),
                         static_cast<std::uint16_t>(x - start), 1});
    }
}

} // namespace

std::vector<xcb_rectangle_t> solidSpans(const QImage& picture) {
    const auto isBelow = [](const xcb_rectangle_t& upper, const xcb_rectangle_t& lower) {
        return upper.x == lower.x && upper.width == lower.width && upper.y + upper.height == lower.y;
    };
    std::vector<xcb_rectangle_t> result;
    std::vector<xcb_rectangle_t> spans;
    for (int y = 0; y < picture.height(); ++y) {
        spans.clear();
        addSpans(reinterpret_cast<const QRgb*>(picture.constScanLine(y)), picture.width(), y, spans);
        // A row like the one above makes that one taller.
        if (spans.size() == 1 && !result.empty() && isBelow(result.back(), spans.front()))
            ++result.back().height;
        else
            result.insert(result.end(), spans.begin(), spans.end());
    }
    return result;
}

} // namespace platform::desktop
