#pragma once

#include "Platform/Kit/View.h"

namespace platform {

// A view with a body of frosted glass. Main thread.
class VisualEffectView : public View {
public:
    using View::View;

    const VisualEffect& effect() const { return look; }
    void setMaterial(VisualEffect::Material material) {
        look.material = material;
        setNeedsDisplay();
    }
    void setBlendingMode(VisualEffect::BlendingMode mode) {
        look.blendingMode = mode;
        setNeedsDisplay();
    }
    void setState(VisualEffect::State state) {
        look.state = state;
        setNeedsDisplay();
    }

protected:
    void draw(Drawing& drawing, const Rect&) const override { drawing.effect = look; }

private:
    VisualEffect look;
};

} // namespace platform
