#include "Platform/Desktop/Windows/DesktopAccessibility.h"

#include <QAccessible>
#include <QDBusMessage>
#include <QDBusVariant>

namespace platform::desktop {
namespace {

// Qt's own connection to the screen readers' bus, on which it answers for the program's windows.
constexpr const char* connectionOfQt = "a11y";
constexpr const char* program = "/org/a11y/atspi/accessible/root";
// When the reader has said what it is saying.
constexpr int polite = 1;

} // namespace

// Qt has an event for this only from 6.8 on.
void DesktopAccessibility::announce(const std::string& text) {
    if (!QAccessible::isActive())
        return;
    auto message = QDBusMessage::createSignal(program, "org.a11y.atspi.Event.Object", "Announcement");
    message << QString() << polite << 0 << QVariant::fromValue(QDBusVariant(QString::fromStdString(text)))
            << QVariantMap();
    QDBusConnection(connectionOfQt).send(message);
}

} // namespace platform::desktop
