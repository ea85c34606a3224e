#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Desktop/Session/MotionPreference.h"

namespace platform::desktop {

// By the desktop's settings, and by the bus that screen readers listen on. Main thread.
class DesktopAccessibility : public Accessibility {
public:
    explicit DesktopAccessibility(QDBusConnection sessionBus) : motion(std::move(sessionBus)) {}

    // Asks the desktop for its settings and follows them. Once.
    void follow() { motion.follow(); }

    bool shouldReduceMotion() override { return motion.isReduced(); }
    void announce(const std::string& text) override;

private:
    MotionPreference motion;
};

} // namespace platform::desktop
