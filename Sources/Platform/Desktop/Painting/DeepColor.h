#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include <QRgb>

namespace platform::desktop {

// A premultiplied colour with 16 bits to a component, for what changes too gently for the screen's 8: rounded
// up or down from pixel to pixel, it comes out right on average and shows no steps. Any thread.
struct DeepColor {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
    std::uint16_t alpha = 0;

    // The highest value stays within 255 whatever is added before the low byte is dropped.
    static constexpr std::uint16_t deep(double component) {
        return static_cast<std::uint16_t>(std::clamp(component, 0.0, 1.0) * 0xFF00);
    }

    // For the pixel of that column and row.
    QRgb dithered(int x, int y) const {
        const auto add = threshold(x, y);
        const auto shallow = [&](std::uint16_t value) { return (value + add) >> 8U; };
        return shallow(alpha) << 24U | shallow(red) << 16U | shallow(green) << 8U | shallow(blue);
    }

    // The pattern comes again after so many pixels.
    static constexpr int period = 8;

private:
    static constexpr std::array<std::uint8_t, 64> order{
        0,  32, 8,  40, 2,  34, 10, 42, 48, 16, 56, 24, 50, 18, 58, 26, 12, 44, 4,  36, 14, 46,
        6,  38, 60, 28, 52, 20, 62, 30, 54, 22, 3,  35, 11, 43, 1,  33, 9,  41, 51, 19, 59, 27,
        49, 17, 57, 25, 15, 47, 7,  39, 13, 45, 5,  37, 63, 31, 55, 23, 61, 29, 53, 21};

    static constexpr unsigned threshold(int x, int y) {
        const auto row = static_cast<unsigned>(y) % period;
        const auto column = static_cast<unsigned>(x) % period;
        return order[row * period + column] * 4U + 2U;
    }
};

} // namespace platform::desktop
