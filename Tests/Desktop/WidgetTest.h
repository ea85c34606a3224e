#pragma once

#include "Desktop/QtProgram.h"
#include "Desktop/XServer.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace platform::desktop {

// A test of what the toolkit shows, on a display of its own and without a session bus.
class WidgetTest : public testing::Test {
protected:
    // Lets the event loop work until it does.
    template <typename Condition>
    static bool comesTrue(Condition condition) {
        return tests::comesTrue([&] {
            QCoreApplication::processEvents();
            return condition();
        });
    }

    // The one window of that kind that can be used.
    template <typename Widget>
    static Widget* windowOf() {
        Widget* found = nullptr;
        comesTrue([&] {
            for (auto* window : QApplication::topLevelWidgets())
                if (auto* widget = dynamic_cast<Widget*>(window);
                    widget && widget->isVisible() && widget->isEnabled())
                    found = widget;
            return found != nullptr;
        });
        return found;
    }

private:
    const tests::XServer display;
    const bool hasNoBus = setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1) == 0;
    const tests::QtProgram<QApplication> program;
};

} // namespace platform::desktop
