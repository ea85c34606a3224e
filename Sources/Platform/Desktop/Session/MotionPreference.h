#pragma once

#include <QDBusConnection>
#include <QTimer>

namespace platform::desktop {

// Whether the desktop asks for less motion, by its portal's settings. Main thread.
class MotionPreference {
public:
    explicit MotionPreference(QDBusConnection sessionBus) : bus(std::move(sessionBus)) {}

    // Asks, and from now on follows what changes. Once.
    void follow();

    // Not before the desktop has answered.
    bool isReduced() const { return reduced; }

private:
    void ask();

    QDBusConnection bus;
    bool reduced = false;
    // Restarted rather than asked again for each of several changes at once.
    QTimer question;
};

} // namespace platform::desktop
