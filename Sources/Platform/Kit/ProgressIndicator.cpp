#include "Platform/Kit/ProgressIndicator.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace platform {
namespace {

constexpr int spokes = 8;
constexpr Duration turn = std::chrono::milliseconds(960);
constexpr double brightest = 0.85;
constexpr double faintest = 0.2;

// How bright a spoke is so many steps after its turn came.
double brightness(int steps) {
    return brightest + (faintest - brightest) * std::min(steps, spokes - 2) / (spokes - 2);
}

} // namespace

ProgressIndicator::ProgressIndicator(const Rect& frame) : View(frame) {
    const double radius = std::min(frame.width, frame.height) / 2;
    const double length = radius * 0.5;
    const double width = radius * 0.26;
    for (int index = 0; index < spokes; ++index) {
        // From the top, with the clock.
        const double angle = -2 * std::numbers::pi * index / spokes;
        const double middle = radius - length / 2;
        auto spoke = std::make_shared<Layer>();
        spoke->setFrame({0, 0, width, length});
        spoke->setPosition(
            {bounds().midX() - middle * std::sin(angle), bounds().midY() + middle * std::cos(angle)});
        spoke->setRotation(angle);
        spoke->setCornerRadius(width / 2);
        spoke->setBackgroundColor(Color::system(SystemColor::label));
        spoke->setOpacity(static_cast<float>(faintest));
        layer()->addSublayer(spoke);
    }
}

void ProgressIndicator::startAnimation() {
    for (int index = 0; index < spokes; ++index) {
        // In steps: at rest between them, it costs next to nothing to show.
        KeyframeAnimation steps{
            {.keyPath = "opacity", .duration = turn, .repeatCount = Animation::forever}, {}, {}};
        for (int step = 0; step < spokes; ++step) {
            const double shown = brightness((step - index + spokes) % spokes);
            steps.values.insert(steps.values.end(), {shown, shown});
            steps.keyTimes.insert(steps.keyTimes.end(), {double(step) / spokes, double(step + 1) / spokes});
        }
        layer()->sublayers().at(static_cast<std::size_t>(index))->addAnimation(steps, "spinning");
    }
}

} // namespace platform
