#include "Platform/Desktop/Tray/TrayWatch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace platform::desktop {
namespace {

constexpr const char* service = "org.kde.StatusNotifierWatcher";
constexpr const char* path = "/StatusNotifierWatcher";

} // namespace

TrayWatch::TrayWatch(DesktopPanel& watchedPanel, std::function<void()> changed) : panel(watchedPanel) {
    panel.onChange = [this] { report.start(); };
    report.setSingleShot(true);
    QObject::connect(&report, &QTimer::timeout, std::move(changed));
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    question.setSingleShot(true);
    QObject::connect(&question, &QTimer::timeout, [this] { askForHost(); });
    watchers.setConnection(bus);
    watchers.addWatchedService(service);
    QObject::connect(&watchers, &QDBusServiceWatcher::serviceOwnerChanged, &question,
                     [this] { question.start(); });
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect(service, path, service, signal, &question, SLOT(start()));
    askForHost();
}

TrayWatch::~TrayWatch() {
    panel.onChange = nullptr;
}

// A panel that is busy takes its time to answer.
void TrayWatch::askForHost() {
    auto message = QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
    message << service << "IsStatusNotifierHostRegistered";
    message.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), &question);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &question, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        hasHost = reply.isValid() && reply.value().variant().toBool();
        report.start();
    });
}

} // namespace platform::desktop
