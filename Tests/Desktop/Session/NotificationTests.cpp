#include "Desktop/Session/SessionBusTest.h"
#include "Platform/Desktop/Session/DesktopNotifications.h"

#include <QUrl>

namespace platform::desktop {
namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* notificationsPath = "/org/freedesktop/Notifications";

const Bundle& notificationTexts() {
    static const Bundle bundle(LUMARIN_RESOURCES);
    return bundle;
}

using NotificationTest = SessionBusTest;

TEST_F(NotificationTest, OneNoticeTakesThePlaceOfTheOther) {
    QStringList capabilities;
    std::vector<std::tuple<unsigned, QString, QString>> notices;
    serve(service, notificationsPath, [&](const QDBusMessage& message) -> QVariantList {
        if (message.member() == "GetCapabilities")
            return {capabilities};
        const auto arguments = message.arguments();
        EXPECT_EQ(arguments.size(), 8);
        EXPECT_TRUE(QUrl(arguments.at(2).toString()).isLocalFile());
        notices.emplace_back(arguments.at(1).toUInt(), arguments.at(3).toString(),
                             arguments.at(4).toString());
        return {7U};
    });
    DesktopNotifications notifications(program, notificationTexts());
    const auto tell = [&](const std::vector<const char*>& sentences, const QStringList& abilities) {
        capabilities = abilities;
        notices.clear();
        for (const char* sentence : sentences)
            notifications.deliver(sentence);
        EXPECT_TRUE(comesTrue([&] { return !notices.empty() && std::get<2>(notices.back()) != "a"; }));
    };
    tell({"a", "b", "没有 <b> & c"}, {"body", "body-markup"});
    EXPECT_EQ(notices.back(), std::tuple(0U, "Lumarin", "没有 &lt;b&gt; &amp; c"));
    tell({"<d>"}, {"body"});
    EXPECT_EQ(notices.back(), std::tuple(7U, "Lumarin", "<d>"));
    tell({"e"}, {});
    EXPECT_EQ(notices.back(), std::tuple(7U, "e", ""));
}

TEST_F(NotificationTest, ComesOnceThereIsAServerAndDoesNoHarmBefore) {
    DesktopNotifications(QDBusConnection("none"), notificationTexts()).deliver("nobody");
    DesktopNotifications notifications(program, notificationTexts());
    notifications.deliver("too early");
    for (int turn = 0; turn < 20; ++turn)
        QCoreApplication::processEvents();
    int notices = 0;
    serve(service, notificationsPath, [&](const QDBusMessage& message) -> QVariantList {
        notices += message.member() == "Notify";
        return message.member() == "Notify" ? QVariantList{1U} : QVariantList{QStringList()};
    });
    EXPECT_TRUE(comesTrue([&] {
        notifications.deliver("in time");
        return notices > 0;
    }));
}

} // namespace
} // namespace platform::desktop
