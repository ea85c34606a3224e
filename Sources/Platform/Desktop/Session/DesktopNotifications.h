#pragma once

#include "Platform/Foundation/Bundle.h"
#include "Platform/UserNotifications.h"

#include <optional>

#include <QDBusConnection>
#include <QObject>

namespace platform::desktop {

// Notices of the desktop's notification server, found over the session bus when one is delivered. Main
// thread.
class DesktopNotifications : public UserNotifications {
public:
    DesktopNotifications(QDBusConnection sessionBus, const Bundle& resources)
        : bus(std::move(sessionBus)), bundle(resources) {}

    void deliver(const std::string& sentence) override;

private:
    void askServer();
    void notify(const QStringList& capabilities);
    // Calls back with the server's answer.
    template <typename Callback>
    void call(const char* method, const QVariantList& arguments, Callback callback);

    QDBusConnection bus;
    const Bundle& bundle;
    // Not yet with the server; a later one takes its place.
    std::optional<QString> waiting;
    bool isAsking = false;
    // The number of the notice that the next one replaces; the server takes one that is gone for none.
    unsigned number = 0;
    // What is asked is forgotten with it.
    QObject lifetime;
};

} // namespace platform::desktop
