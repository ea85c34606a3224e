#pragma once

namespace platform {

// The colours that the desktop's theme decides; it may change at any time.
enum class SystemColor {
    none,
    label,
    secondaryLabel,
    tertiaryLabel,
    separator,
    controlAccent,
    windowBackground,
    green,
};

// A colour with straight (not premultiplied) components between 0 and 1, or one of the theme's by its name.
// Any thread, except where said.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;
    // With a name the components have no meaning.
    SystemColor name = SystemColor::none;

    static constexpr Color calibrated(double red, double green, double blue, double alpha) {
        return {red, green, blue, alpha};
    }
    static constexpr Color white(double white, double alpha) { return {white, white, white, alpha}; }
    static constexpr Color clear() { return {}; }
    static constexpr Color system(SystemColor name) { return {0, 0, 0, 1, name}; }

    // Not for one of the theme's.
    constexpr Color withAlphaComponent(double component) const { return {red, green, blue, component}; }

    // The colour in components, which is what is painted: one of the theme's as it is at present. Main
    // thread.
    Color resolved() const;

    bool operator==(const Color&) const = default;
};

} // namespace platform
