#include "Desktop/Session/SessionBusTest.h"
#include "Platform/Desktop/Session/MotionPreference.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

namespace platform::desktop {
namespace {

using Groups = QMap<QString, QVariantMap>;
using MotionPreferenceTest = SessionBusTest;

constexpr const char* path = "/org/freedesktop/portal/desktop";

TEST_F(MotionPreferenceTest, FollowsWhatTheDesktopSays) {
    qDBusRegisterMetaType<Groups>();
    Groups groups;
    int questions = 0;
    serve("org.freedesktop.portal.Desktop", path, [&](const QDBusMessage& message) -> QVariantList {
        questions += message.member() == "ReadAll";
        return {QVariant::fromValue(groups)};
    });
    MotionPreference motion(program);
    motion.follow();
    EXPECT_TRUE(comesTrue([&] { return questions == 1; }));
    EXPECT_FALSE(motion.isReduced());

    const auto change = [&](const QString& group, const QString& key, const QVariant& value) {
        groups = {{group, {{key, value}}}};
        auto signal = QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        desktop.send(signal);
    };
    struct Case {
        const char* group;
        const char* key;
        QVariant less;
        QVariant more;
    };
    for (const auto& [group, key, less, more] :
         {Case{"org.freedesktop.appearance", "reduced-motion", 1U, 0U},
          {"org.gnome.desktop.interface", "enable-animations", false, true},
          {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", "0", "0.5"},
          {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", 0.0, ""}}) {
        change(group, key, less);
        EXPECT_TRUE(comesTrue([&] { return motion.isReduced(); })) << key;
        change(group, key, more);
        EXPECT_TRUE(comesTrue([&] { return !motion.isReduced(); })) << key;
    }
    // Of what else is set it takes no notice.
    const int before = questions;
    change("org.freedesktop.appearance", "color-scheme", 1U);
    change("org.freedesktop.appearance", "reduced-motion", 1U);
    EXPECT_TRUE(comesTrue([&] { return motion.isReduced(); }));
    EXPECT_EQ(questions, before + 1);
}

TEST_F(MotionPreferenceTest, IsNoneWhereNobodyAnswers) {
    for (const auto& bus : {program, QDBusConnection("none")}) {
        MotionPreference motion(bus);
        motion.follow();
        for (int turn = 0; turn < 20; ++turn)
            QCoreApplication::processEvents();
        EXPECT_FALSE(motion.isReduced());
    }
}

} // namespace
} // namespace platform::desktop
