#pragma once

namespace platform {

// A body of frosted glass: what it looks like, what shines through, and whether it is lively in a window that
// is not in use. A host that cannot blur paints the material in a plain, nearly opaque colour. Value.
struct VisualEffect {
    enum class Material { windowBackground = 12, hudWindow = 13 };
    enum class BlendingMode { behindWindow = 0, withinWindow = 1 };
    enum class State { followsWindowActiveState = 0, active = 1 };

    Material material = Material::windowBackground;
    BlendingMode blendingMode = BlendingMode::behindWindow;
    State state = State::followsWindowActiveState;

    bool operator==(const VisualEffect&) const = default;
};

} // namespace platform
