#include "Platform/Desktop/Tray/TrayWatch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

namespace platform::desktop {

namespace {

constexpr const char* service = "org.kde.StatusNotifierWatcher";
constexpr const char* path = "/StatusNotifierWatcher";

bool hasPanel() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    auto question = QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
    question << service << "IsStatusNotifierHostRegistered";
    question.setAutoStartService(false);
    constexpr int milliseconds = 500;
    const auto answer = bus.call(question, QDBus::Block, milliseconds);
    return answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty()
           && qvariant_cast<QDBusVariant>(answer.arguments().front()).variant().toBool();
}

} // namespace

TrayWatch::TrayWatch(const XConnection& x, std::function<void()> changed)
    : classic(x, "_NET_SYSTEM_TRAY", [this] { report.start(); }) {
    report.setSingleShot(true);
    QObject::connect(&report, &QTimer::timeout, std::move(changed));
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    panels.setConnection(bus);
    panels.addWatchedService(service);
    QObject::connect(&panels, &QDBusServiceWatcher::serviceOwnerChanged, &report, [this] { report.start(); });
    bus.connect(service, path, service, "StatusNotifierHostRegistered", &report, SLOT(start()));
}

bool TrayWatch::isThere() const {
    return classicTray() != XCB_NONE || hasPanel();
}

} // namespace platform::desktop
