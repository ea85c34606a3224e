#include "Platform/Kit/Layer.h"

#include "Platform/Host.h"
#include "Platform/Kit/Transaction.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace platform {
namespace {

using Setter = void (*)(LayerState&, const AnimationValue&);

template <auto property>
void assign(LayerState& state, const AnimationValue& value) {
    auto& target = state.*property;
    target = std::get<std::decay_t<decltype(target)>>(value);
}

struct Property {
    std::string_view keyPath;
    Setter set;
};

constexpr std::array properties{
    Property{"position", assign<&LayerState::position>},
    Property{"position.x", [](auto& state, auto& value) { state.position.x = std::get<double>(value); }},
    Property{"position.y", [](auto& state, auto& value) { state.position.y = std::get<double>(value); }},
    Property{"bounds.size", assign<&LayerState::size>},
    Property{"transform", assign<&LayerState::transform>},
    Property{"transform.scale",
             [](auto& state, auto& value) {
                 const double scale = std::get<double>(value);
                 state.transform.scale = {scale, scale};
             }},
    Property{"transform.rotation.z", assign<&LayerState::rotation>},
    Property{"transform.translation.x",
             [](auto& state, auto& value) { state.transform.translation.x = std::get<double>(value); }},
    Property{"transform.translation.y",
             [](auto& state, auto& value) { state.transform.translation.y = std::get<double>(value); }},
    Property{"opacity", assign<&LayerState::opacity>},
    Property{"backgroundColor", assign<&LayerState::backgroundColor>},
    Property{"cornerRadius", assign<&LayerState::cornerRadius>},
    Property{"borderWidth", assign<&LayerState::borderWidth>},
    Property{"borderColor", assign<&LayerState::borderColor>},
    Property{"colors", assign<&LayerState::colors>},
    Property{"locations", assign<&LayerState::locations>},
};

Setter setterFor(const std::string& keyPath) {
    const auto* found = std::ranges::find(properties, keyPath, &Property::keyPath);
    if (found == properties.end())
        throw std::invalid_argument("A layer has no property " + keyPath);
    return found->set;
}

void resolve(LayerPresentation& layer) {
    layer.backgroundColor = layer.backgroundColor.resolved();
    layer.borderColor = layer.borderColor.resolved();
    for (auto& color : layer.colors)
        color = color.resolved();
    for (auto& line : layer.drawing.lines)
        line.color = line.color.resolved();
    for (auto& symbol : layer.drawing.symbols)
        symbol.color = symbol.color.resolved();
    if (layer.drawing.button)
        layer.drawing.button->tint = layer.drawing.button->tint.resolved();
}

std::optional<Duration> earlier(std::optional<Duration> one, std::optional<Duration> other) {
    return one && other ? std::min(one, other) : std::max(one, other);
}

} // namespace

// A frame may be for a moment just before the animation was added: it shows the beginning.
double Layer::Running::runsPassed(Duration time) const {
    if (animation.duration <= Duration::zero())
        return animation.repeatCount;
    return std::max(0.0, static_cast<double>((time - begin).count())
                             / static_cast<double>(animation.duration.count()));
}

bool Layer::Running::isOver(Duration time) const {
    return runsPassed(time) >= animation.repeatCount;
}

bool Layer::Running::isKept(Duration time) const {
    return !isOver(time) || !animation.isRemovedOnCompletion;
}

bool Layer::Running::isShown(Duration time) const {
    if (isOver(time))
        return isKept(time) && animation.fillMode == FillMode::forwards;
    return !animation.beginTime || time >= begin;
}

void Layer::Running::show(LayerState& state, Duration time) const {
    const double runs = std::min(runsPassed(time), animation.repeatCount);
    const double share = runs - std::floor(runs);
    apply(state, animation.value(isOver(time) && share == 0 ? 1 : share));
}

std::optional<Duration> Layer::Running::nextChange(Duration time) const {
    if (isOver(time))
        return std::nullopt;
    if (!isShown(time))
        return begin;
    if (!animation.timingFunction.isLinear())
        return time;
    // It holds still between equal values.
    const double runs = runsPassed(time);
    const double run = std::floor(runs);
    const auto& keyTimes = animation.keyTimes;
    auto next = static_cast<std::size_t>(std::ranges::upper_bound(keyTimes, runs - run) - keyTimes.begin());
    while (next < keyTimes.size() && animation.values[next] == animation.values[next - 1])
        ++next;
    const double still = run + keyTimes[next - 1];
    const std::chrono::duration<double, Duration::period> passed(animation.duration);
    return std::max(time, begin + std::chrono::ceil<Duration>(passed * still));
}

Layer::~Layer() {
    for (const auto& child : children)
        child->parent = nullptr;
}

void Layer::setFrame(const Rect& frame) {
    set("position", &LayerState::position, Point{frame.midX(), frame.midY()});
    set("bounds.size", &LayerState::size, frame.size());
}

void Layer::setMasksToBounds(bool masks) {
    model.masksToBounds = masks;
    setNeedsDisplay();
}

void Layer::addSublayer(std::shared_ptr<Layer> sublayer) {
    sublayer->removeFromSuperlayer();
    sublayer->parent = this;
    children.push_back(std::move(sublayer));
    setNeedsDisplay();
}

void Layer::removeFromSuperlayer() {
    if (!parent)
        return;
    auto& former = *std::exchange(parent, nullptr);
    former.setNeedsDisplay();
    // Last: it may be the end of this layer.
    std::erase_if(former.children, [this](const auto& child) { return child.get() == this; });
}

void Layer::addAnimation(const BasicAnimation& animation, const std::string& key) {
    addAnimation(KeyframeAnimation{animation, {animation.fromValue, animation.toValue}, {0, 1}}, key);
}

void Layer::addAnimation(const KeyframeAnimation& animation, const std::string& key) {
    const Setter apply = setterFor(animation.keyPath);
    const Duration now = Host::current().mainRunLoop().now();
    std::erase_if(animations,
                  [&](const Running& running) { return running.key == key || !running.isKept(now); });
    animations.push_back({key, animation, apply, animation.beginTime.value_or(now)});
    setNeedsDisplay();
}

void Layer::removeAnimation(const std::string& key) {
    std::erase_if(animations, [&](const Running& running) { return running.key == key; });
    setNeedsDisplay();
}

void Layer::removeAllAnimations() {
    animations.clear();
    setNeedsDisplay();
}

std::vector<std::string> Layer::animationKeys() const {
    const Duration now = Host::current().mainRunLoop().now();
    std::vector<std::string> keys;
    for (const auto& running : animations)
        if (running.isKept(now))
            keys.push_back(running.key);
    return keys;
}

LayerPresentation Layer::presentation(Duration time) const {
    LayerPresentation result{shown(time), {}, {}};
    draw(result.drawing, result.bounds());
    resolve(result);
    for (const auto& child : children)
        result.sublayers.push_back(child->presentation(time));
    return result;
}

std::optional<Duration> Layer::nextChange(Duration time) const {
    std::optional<Duration> next;
    for (const auto& running : animations)
        next = earlier(next, running.nextChange(time));
    for (const auto& child : children)
        next = earlier(next, child->nextChange(time));
    return next;
}

void Layer::setNeedsDisplay() {
    if (parent)
        parent->setNeedsDisplay();
}

LayerState Layer::shown(Duration time) const {
    LayerState state = model;
    for (const auto& running : animations)
        if (running.isShown(time))
            running.show(state, time);
    return state;
}

LayerState Layer::shownNow() const {
    return shown(Host::current().mainRunLoop().now());
}

void Layer::moveTo(const std::string& name, const AnimationValue& from, const AnimationValue& to) {
    removeAnimation(name);
    const auto* transaction = Transaction::current();
    if (transaction && transaction->duration > Duration::zero() && from != to)
        addAnimation(BasicAnimation{{.keyPath = name,
                                     .duration = transaction->duration,
                                     .timingFunction = transaction->timingFunction},
                                    from,
                                    to},
                     name);
}

} // namespace platform
