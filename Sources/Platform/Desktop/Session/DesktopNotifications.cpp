#include "Platform/Desktop/Session/DesktopNotifications.h"

#include <utility>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QUrl>

namespace platform::desktop {
namespace {

constexpr const char* program = "Lumarin";
constexpr const char* desktopEntry = "lumarin";
constexpr int serversOwnTime = -1;

} // namespace

void DesktopNotifications::deliver(const std::string& sentence) {
    waiting = QString::fromStdString(sentence);
    if (!isAsking)
        askServer();
}

template <typename Callback>
void DesktopNotifications::call(const char* method, const QVariantList& arguments, Callback callback) {
    auto message =
        QDBusMessage::createMethodCall("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                       "org.freedesktop.Notifications", method);
    message.setArguments(arguments);
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(message), &lifetime);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &lifetime, [answer, callback] {
        answer->deleteLater();
        callback(*answer);
    });
}

void DesktopNotifications::askServer() {
    isAsking = true;
    call("GetCapabilities", {}, [this](const QDBusPendingReply<QStringList>& capabilities) {
        if (capabilities.isValid()) {
            notify(capabilities.value());
            return;
        }
        waiting.reset();
        isAsking = false;
    });
}

void DesktopNotifications::notify(const QStringList& capabilities) {
    auto sentence = *std::exchange(waiting, std::nullopt);
    QString title = program;
    if (!capabilities.contains("body"))
        title = std::exchange(sentence, {});
    // What another service had to say may look like mark-up.
    if (capabilities.contains("body-markup"))
        sentence = sentence.toHtmlEscaped();
    const auto drawing = bundle.pathForResource("lumarin", "svg");
    const auto icon =
        drawing ? QUrl::fromLocalFile(QString::fromStdString(drawing->string())).toString() : "";
    call("Notify",
         {program, number, icon, title, sentence, QStringList(), QVariantMap{{"desktop-entry", desktopEntry}},
          serversOwnTime},
         [this](const QDBusPendingReply<unsigned>& answer) {
             if (answer.isValid())
                 number = answer.value();
             isAsking = false;
             if (waiting)
                 askServer();
         });
}

} // namespace platform::desktop
