#include "Platform/Desktop/Session/MotionPreference.h"

#include <array>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

namespace platform::desktop {
namespace {

constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* path = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";

// One of the desktops' ways to say it.
struct Setting {
    const char* group;
    const char* key;
    bool (*asksForLess)(const QVariant&);
};

constexpr std::array settings{
    Setting{"org.freedesktop.appearance", "reduced-motion",
            [](const QVariant& value) { return value.toUInt() == 1; }},
    Setting{"org.gnome.desktop.interface", "enable-animations",
            [](const QVariant& value) { return value.isValid() && !value.toBool(); }},
    // A number, or its text.
    Setting{"org.kde.kdeglobals.KDE", "AnimationDurationFactor",
            [](const QVariant& value) {
                bool isNumber = false;
                return value.toDouble(&isNumber) <= 0 && isNumber;
            }},
};

} // namespace

void MotionPreference::follow() {
    if (!bus.isConnected())
        return;
    question.setSingleShot(true);
    QObject::connect(&question, &QTimer::timeout, [this] { ask(); });
    for (const auto& setting : settings)
        bus.connect({}, path, interface, "SettingChanged", {setting.group, setting.key}, {}, &question,
                    SLOT(start()));
    ask();
}

void MotionPreference::ask() {
    QStringList groups;
    for (const auto& setting : settings)
        groups << setting.group;
    auto message = QDBusMessage::createMethodCall(service, path, interface, "ReadAll");
    message << groups;
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(message), &question);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &question, [this, answer] {
        answer->deleteLater();
        const auto reply = answer->reply();
        if (reply.signature() != "a{sa{sv}}")
            return;
        const auto values = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().front());
        reduced = std::ranges::any_of(settings, [&](const Setting& setting) {
            return setting.asksForLess(values.value(setting.group).value(setting.key));
        });
    });
}

} // namespace platform::desktop
