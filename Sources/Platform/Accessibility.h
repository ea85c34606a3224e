#pragma once

#include <string>

namespace platform {

// What the desktop knows of the needs of the person before it, and what speaks to those who can't see. Main
// thread.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    // Whether as little as possible is to move. It may change at any time.
    virtual bool shouldReduceMotion() = 0;

    // Has a screen reader say it, if one listens; the focus stays where it is. Returns at once.
    virtual void announce(const std::string& text) = 0;
};

} // namespace platform
