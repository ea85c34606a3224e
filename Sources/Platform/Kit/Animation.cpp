#include "Platform/Kit/Animation.h"

#include <algorithm>
#include <cmath>

namespace platform {
namespace {

double blend(double from, double to, double share) {
    return std::lerp(from, to, share);
}

Point blend(const Point& from, const Point& to, double share) {
    return {blend(from.x, to.x, share), blend(from.y, to.y, share)};
}

Size blend(const Size& from, const Size& to, double share) {
    return {blend(from.width, to.width, share), blend(from.height, to.height, share)};
}

Transform blend(const Transform& from, const Transform& to, double share) {
    return {blend(from.scale, to.scale, share), blend(from.translation, to.translation, share)};
}

Color blend(const Color& first, const Color& last, double share) {
    const Color from = first.resolved();
    const Color to = last.resolved();
    return {blend(from.red, to.red, share), blend(from.green, to.green, share),
            blend(from.blue, to.blue, share), blend(from.alpha, to.alpha, share)};
}

// Lists of different lengths do not blend: the new one shows at once.
template <typename Element>
std::vector<Element> blend(const std::vector<Element>& from, const std::vector<Element>& to, double share) {
    if (from.size() != to.size())
        return to;
    std::vector<Element> result;
    result.reserve(to.size());
    for (std::size_t index = 0; index < to.size(); ++index)
        result.push_back(blend(from[index], to[index], share));
    return result;
}

} // namespace

AnimationValue KeyframeAnimation::value(double share) const {
    const double way = timingFunction.value(share);
    const auto after = std::upper_bound(keyTimes.begin(), keyTimes.end(), way) - keyTimes.begin();
    const auto next = std::clamp<std::size_t>(static_cast<std::size_t>(after), 1, values.size() - 1);
    const double local = (way - keyTimes[next - 1]) / (keyTimes[next] - keyTimes[next - 1]);
    return std::visit(
        [&](const auto& from) {
            const auto& to = std::get<std::decay_t<decltype(from)>>(values[next]);
            return AnimationValue(blend(from, to, local));
        },
        values[next - 1]);
}

} // namespace platform
