#include "UI/Confetti.h"

#include "Platform/Host.h"

#include <array>
#include <cmath>
#include <limits>

namespace lumarin {
namespace {

using namespace platform;
using namespace std::chrono_literals;

constexpr int particles = 40;
constexpr std::array sizes{4.0, 5.0, 6.0, 3.0};
constexpr std::array colors{Color::calibrated(0.55, 0.47, 0.98, 1), Color::calibrated(0.35, 0.78, 0.5, 1),
                            Color::calibrated(0.98, 0.65, 0.25, 1), Color::calibrated(0.95, 0.4, 0.45, 1),
                            Color::calibrated(0.3, 0.7, 0.95, 1),   Color::calibrated(0.95, 0.8, 0.25, 1)};
constexpr Duration fadeTime = 400ms;
// Just above the page.
constexpr double above = 10;

Duration seconds(double count) {
    return std::chrono::round<Duration>(std::chrono::duration<double>(count));
}

// Both ends included.
double between(double low, double high, std::mt19937& random) {
    constexpr double beyond = std::numeric_limits<double>::max();
    return std::uniform_real_distribution(low, std::nextafter(high, beyond))(random);
}

void fall(Layer& particle, const Size& page, Duration now, std::mt19937& random) {
    const Point start{between(0, page.width, random), page.height + above};
    const Point end{start.x + between(-60, 60, random), between(-20, 40, random)};
    const Point middle{(start.x + end.x) / 2 + between(-30, 30, random),
                       between(0.4, 0.7, random) * page.height};
    particle.setPosition(start);

    const Duration duration = seconds(between(1.2, 2.2, random));
    const Duration begin = now + seconds(between(0, 0.4, random));
    const auto kept = [](const char* keyPath, Duration from, Duration length) {
        return Animation{.keyPath = keyPath,
                         .duration = length,
                         .beginTime = from,
                         .isRemovedOnCompletion = false,
                         .fillMode = FillMode::forwards};
    };
    KeyframeAnimation falling{kept("position", begin, duration), {start, middle, end}, {0, 0.5, 1}};
    falling.timingFunction = TimingFunction(0.25, 1.0, 0.5, 1.0);
    particle.addAnimation(falling, "fall");
    particle.addAnimation(
        BasicAnimation{kept("transform.rotation.z", begin, duration), 0.0, between(-6, 6, random)}, "spin");
    particle.addAnimation(BasicAnimation{kept("opacity", begin + duration - fadeTime, fadeTime), 1.0, 0.0},
                          "fade");
}

} // namespace

void startConfetti(View& page, std::mt19937& random) {
    page.layer()->setMasksToBounds(true);
    const Duration now = Host::current().mainRunLoop().now();
    for (std::size_t index = 0; index < particles; ++index) {
        const double size = sizes[index % sizes.size()];
        auto particle = std::make_shared<Layer>();
        particle->setFrame({0, 0, size, size * between(1.5, 3.0, random)});
        particle->setBackgroundColor(colors[index % colors.size()]);
        particle->setCornerRadius(size / 3);
        page.layer()->addSublayer(particle);
        fall(*particle, page.bounds().size(), now, random);
    }
}

} // namespace lumarin
