#pragma once

#include "Acceptance/Display.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QImage>
#include <QThread>

namespace tests {

// A desktop's panel on a session bus of the test's own, which programs register their icons with and which
// opens their menus. It works on a thread of its own; a QCoreApplication must be there.
class Panel {
public:
    // A line of a menu.
    struct Line {
        int id = 0;
        std::string label;
        bool isEnabled = true;
        bool isChecked = false;
        std::vector<Line> submenu;
    };

    // The bus is that of the test's own process, and of programs started on the display from now on. The
    // panel is not there yet.
    explicit Panel(Display& display);
    ~Panel();
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    void appear();

    // Waits for a program.
    void awaitItem() const;
    // The next one is waited for from now on.
    void forgetItem();

    // Its icon in that size, none if it has none.
    QImage icon(int side) const;

    std::vector<Line> menu() const;

    // The line that begins so, in the menu or its submenus; throws if there is none.
    Line line(const std::string& beginning) const;
    void choose(const Line& line) const;

    // The address of the file that the file manager was last asked to select.
    std::string revealed() const;

private:
    class Watcher;

    QDBusMessage ask(const QString& path, const QString& interface, const QString& method,
                     const QVariantList& arguments) const;

    TestProcess daemon;
    QThread thread;
    std::unique_ptr<Watcher> watcher;
    std::unique_ptr<QDBusConnection> bus;
};

} // namespace tests
