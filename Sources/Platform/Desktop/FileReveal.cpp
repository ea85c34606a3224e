#include "Platform/Desktop/FileReveal.h"

#include <array>

#include <csignal>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QProcess>
#include <QUrl>

namespace platform::desktop {

namespace {

QString stringOf(const std::filesystem::path& path) {
    return QString::fromLocal8Bit(path.string().c_str());
}

// The signals that this program keeps to itself would not end what it starts.
void letSignalsIn() {
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

void openFolder(const QString& folder) {
    const std::array commands{QStringList{"xdg-open", folder}, QStringList{"gio", "open", folder}};
    for (const auto& command : commands) {
        QProcess opener;
        opener.setProgram(command.front());
        opener.setArguments(command.mid(1));
        opener.setChildProcessModifier(letSignalsIn);
        opener.setStandardOutputFile(QProcess::nullDevice());
        opener.setStandardErrorFile(QProcess::nullDevice());
        if (opener.startDetached())
            return;
    }
}

} // namespace

void revealFile(const std::filesystem::path& file) {
    const auto folder = stringOf(file.parent_path());
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder(folder);
        return;
    }
    auto request =
        QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                       "org.freedesktop.FileManager1", "ShowItems");
    request << QStringList(QUrl::fromLocalFile(stringOf(file)).toString(QUrl::FullyEncoded)) << QString();
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(request));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, folder] {
        if (answer->isError())
            openFolder(folder);
        answer->deleteLater();
    });
}

} // namespace platform::desktop
