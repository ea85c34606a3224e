#pragma once

#include "Desktop/QtProgram.h"
#include "Support/ComesTrue.h"
#include "Support/TestProcess.h"

#include <functional>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

namespace platform::desktop {

// A program on a session bus of its own, and what it finds there.
class SessionBusTest : public testing::Test {
protected:
    // Answers what it is called with; to what it knows not it gives nothing.
    using Answer = std::function<QVariantList(const QDBusMessage&)>;

    ~SessionBusTest() override {
        for (const char* name : {"program", "desktop"})
            QDBusConnection::disconnectFromBus(name);
    }

    void serve(const char* service, const char* path, Answer answer) {
        object.answer = std::move(answer);
        ASSERT_TRUE(desktop.registerVirtualObject(path, &object));
        ASSERT_TRUE(desktop.registerService(service));
    }

    template <typename Condition>
    static bool comesTrue(Condition condition) {
        return tests::comesTrue([&] {
            QCoreApplication::processEvents();
            return condition();
        });
    }

private:
    class Object : public QDBusVirtualObject {
    public:
        QString introspect(const QString& /*path*/) const override { return {}; }
        bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
            return connection.send(message.createReply(answer(message)));
        }

        Answer answer;
    };

    QDBusConnection connectionNamed(const char* name) const {
        return QDBusConnection::connectToBus(QString::fromStdString(address), name);
    }

    const tests::QtProgram<QCoreApplication> application{"offscreen"};
    tests::TestProcess daemon{{"dbus-daemon", "--session", "--nofork", "--print-address"}, {}};
    const std::string address = daemon.awaitLine("unix:").text;
    Object object;

protected:
    QDBusConnection program = connectionNamed("program");
    QDBusConnection desktop = connectionNamed("desktop");
};

} // namespace platform::desktop
