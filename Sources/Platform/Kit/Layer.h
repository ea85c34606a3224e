#pragma once

#include "Platform/Kit/Animation.h"
#include "Platform/Kit/LayerPresentation.h"

#include <memory>
#include <optional>

namespace platform {

// A rectangle to be shown, in a tree. A property reads back as it was set; what is shown may still be on its
// way there and is computed from the time, which is that of the main run loop. A layer owns its sublayers.
// Main thread.
class Layer {
public:
    Layer() = default;
    virtual ~Layer();
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

    // A frame is set by its position and its size, which move like any other property.
    Rect frame() const { return model.frame(); }
    void setFrame(const Rect& frame);
    Rect bounds() const { return model.bounds(); }
    // Of the middle, which is also what the transform is about.
    Point position() const { return model.position; }
    void setPosition(const Point& position) { set("position", &LayerState::position, position); }
    const Transform& transform() const { return model.transform; }
    void setTransform(const Transform& transform) { set("transform", &LayerState::transform, transform); }
    // By radians against the clock, about the position, before the transform.
    double rotation() const { return model.rotation; }
    void setRotation(double radians) { set("transform.rotation.z", &LayerState::rotation, radians); }
    float opacity() const { return static_cast<float>(model.opacity); }
    void setOpacity(float opacity) { set("opacity", &LayerState::opacity, double{opacity}); }
    const Color& backgroundColor() const { return model.backgroundColor; }
    void setBackgroundColor(const Color& color) {
        set("backgroundColor", &LayerState::backgroundColor, color);
    }
    double cornerRadius() const { return model.cornerRadius; }
    void setCornerRadius(double radius) { set("cornerRadius", &LayerState::cornerRadius, radius); }
    double borderWidth() const { return model.borderWidth; }
    void setBorderWidth(double width) { set("borderWidth", &LayerState::borderWidth, width); }
    const Color& borderColor() const { return model.borderColor; }
    void setBorderColor(const Color& color) { set("borderColor", &LayerState::borderColor, color); }
    // Does not move: it is or is not.
    bool masksToBounds() const { return model.masksToBounds; }
    void setMasksToBounds(bool masks);

    // On top of the others. It leaves the superlayer it was in.
    void addSublayer(std::shared_ptr<Layer> sublayer);
    void removeFromSuperlayer();
    Layer* superlayer() const { return parent; }
    const std::vector<std::shared_ptr<Layer>>& sublayers() const { return children; }

    // Starts an animation that is shown in place of the property it names; of two for the same property the
    // one added last. It takes the place of one with the same key. A transaction's animations are kept under
    // the properties' names. Throws std::invalid_argument for a property there is not.
    void addAnimation(const BasicAnimation& animation, const std::string& key);
    void addAnimation(const KeyframeAnimation& animation, const std::string& key);
    void removeAnimation(const std::string& key);
    void removeAllAnimations();
    std::vector<std::string> animationKeys() const;

    // What is shown at a time that is not before the last change.
    LayerPresentation presentation(Duration time) const;

    // When something in the tree will next look different from what it does at `time`, if nothing is changed
    // until then: `time` itself while something moves, a later time while all holds still, nothing when all
    // is at rest.
    std::optional<Duration> nextChange(Duration time) const;

    // Something in the tree looks different from before. It is called at every change.
    virtual void setNeedsDisplay();

protected:
    // What is to be painted in its bounds besides its properties.
    virtual void draw(Drawing&, const Rect& /*bounds*/) const {}

    template <typename T>
    void set(const std::string& name, T LayerState::*property, const T& value) {
        const T shown = shownNow().*property;
        model.*property = value;
        moveTo(name, shown, value);
    }

    LayerState model;

private:
    struct Running {
        std::string key;
        KeyframeAnimation animation;
        void (*apply)(LayerState&, const AnimationValue&);
        Duration begin;

        double runsPassed(Duration time) const;
        bool isOver(Duration time) const;
        bool isKept(Duration time) const;
        bool isShown(Duration time) const;
        void show(LayerState& state, Duration time) const;
        std::optional<Duration> nextChange(Duration time) const;
    };

    LayerState shown(Duration time) const;
    LayerState shownNow() const;
    void moveTo(const std::string& name, const AnimationValue& from, const AnimationValue& to);

    std::vector<Running> animations;
    Layer* parent = nullptr;
    std::vector<std::shared_ptr<Layer>> children;
};

} // namespace platform
