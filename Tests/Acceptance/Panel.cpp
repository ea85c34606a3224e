#include "Acceptance/Panel.h"

#include <stdexcept>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

namespace tests {
namespace {

constexpr const char* service = "org.kde.StatusNotifierWatcher";
constexpr const char* properties = "org.freedesktop.DBus.Properties";
constexpr const char* menuInterface = "com.canonical.dbusmenu";

Panel::Line readLine(const QDBusArgument& argument) {
    Panel::Line line;
    QVariantMap facts;
    argument.beginStructure();
    argument >> line.id >> facts;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        line.submenu.push_back(readLine(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    line.label = facts["label"].toString().toStdString();
    line.isEnabled = facts.value("enabled", true).toBool();
    line.isChecked = facts["toggle-state"].toInt() == 1;
    return line;
}

const Panel::Line* find(const std::vector<Panel::Line>& lines, const std::string& beginning) {
    for (const auto& line : lines) {
        if (line.label.starts_with(beginning))
            return &line;
        if (const auto* found = find(line.submenu, beginning))
            return found;
    }
    return nullptr;
}

} // namespace

// What programs find on the bus.
class Panel::Watcher : public QDBusVirtualObject {
public:
    QString introspect(const QString& /*path*/) const override {
        return "<interface name=\"org.kde.StatusNotifierWatcher\">"
               "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
               "<method name=\"RegisterStatusNotifierItem\"><arg type=\"s\" direction=\"in\"/></method>"
               "</interface>";
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        auto reply = message.createReply();
        if (message.member() == "RegisterStatusNotifierItem") {
            const std::lock_guard lock(mutex);
            registered = message.service();
            changed.notify_all();
        } else if (message.member() == "ShowItems") {
            const std::lock_guard lock(mutex);
            selected = message.arguments().value(0).toStringList().join(' ');
        } else if (message.member() == "Get") {
            reply << QVariant::fromValue(QDBusVariant(true));
        } else {
            return false;
        }
        return connection.send(reply);
    }

    void forget() {
        const std::lock_guard lock(mutex);
        registered.clear();
    }

    // Whether one comes.
    bool awaitItem() const {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, 10s, [this] { return !registered.isEmpty(); });
    }

    QString item() const {
        const std::lock_guard lock(mutex);
        return registered;
    }

    QString file() const {
        const std::lock_guard lock(mutex);
        return selected;
    }

private:
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    QString registered;
    QString selected;
};

Panel::Panel(Display& display)
    : daemon({"dbus-daemon", "--session", "--nofork", "--print-address"}, {}),
      watcher(std::make_unique<Watcher>()) {
    const auto address = daemon.awaitLine("unix:").text;
    display.setSessionBus(address);
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    bus = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(QString::fromStdString(address), "panel"));
    watcher->moveToThread(&thread);
    thread.start();
    bus->registerVirtualObject("/StatusNotifierWatcher", watcher.get());
    bus->registerVirtualObject("/org/freedesktop/FileManager1", watcher.get());
    bus->registerService("org.freedesktop.FileManager1");
}

Panel::~Panel() {
    thread.quit();
    thread.wait();
    QDBusConnection::disconnectFromBus("panel");
}

void Panel::forgetItem() {
    watcher->forget();
}

void Panel::appear() {
    if (!bus->registerService(service))
        throw std::runtime_error("No panel on the bus");
}

void Panel::awaitItem() const {
    if (!watcher->awaitItem())
        throw std::runtime_error("No program has registered an icon");
}

QImage Panel::icon(int side) const {
    const auto answer =
        ask("/StatusNotifierItem", properties, "Get", {"org.kde.StatusNotifierItem", "IconPixmap"});
    const auto pictures = answer.arguments().value(0).value<QDBusVariant>().variant().value<QDBusArgument>();
    QImage found;
    pictures.beginArray();
    while (!pictures.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        pictures.beginStructure();
        pictures >> width >> height >> bytes;
        pictures.endStructure();
        if (width != side || height != side)
            continue;
        found = QImage(width, height, QImage::Format_ARGB32);
        // Alpha, red, green and blue of each pixel.
        for (int pixel = 0; pixel < width * height; ++pixel) {
            const auto* bands = reinterpret_cast<const unsigned char*>(bytes.constData()) + 4 * pixel;
            found.setPixel(pixel % width, pixel / width, qRgba(bands[1], bands[2], bands[3], bands[0]));
        }
    }
    pictures.endArray();
    return found;
}

std::vector<Panel::Line> Panel::menu() const {
    const auto answer = ask("/MenuBar", menuInterface, "GetLayout", {0, -1, QStringList()});
    return readLine(answer.arguments().value(1).value<QDBusArgument>()).submenu;
}

Panel::Line Panel::line(const std::string& beginning) const {
    const auto lines = menu();
    const auto* found = find(lines, beginning);
    if (!found)
        throw std::runtime_error("No line of the menu begins with " + beginning);
    return *found;
}

void Panel::choose(const Line& line) const {
    ask("/MenuBar", menuInterface, "Event",
        {line.id, "clicked", QVariant::fromValue(QDBusVariant(0)), QVariant::fromValue(0U)});
}

std::string Panel::revealed() const {
    return watcher->file().toStdString();
}

QDBusMessage Panel::ask(const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments) const {
    auto question = QDBusMessage::createMethodCall(watcher->item(), path, interface, method);
    question.setArguments(arguments);
    auto answer = bus->call(question);
    if (answer.type() == QDBusMessage::ErrorMessage)
        throw std::runtime_error(answer.errorMessage().toStdString());
    return answer;
}

} // namespace tests
