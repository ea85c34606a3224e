#include "Platform/Desktop/Session/FileReveal.h"

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

// With the first of the commands that there is.
void tryEach(const QString& folder, QList<QStringList> commands) {
    if (commands.isEmpty())
        return;
    const auto command = commands.takeFirst();
    // It may outlast this program, so nobody owns it but itself.
    auto* opener = new QProcess;
    opener->setChildProcessModifier(letSignalsIn);
    opener->setStandardOutputFile(QProcess::nullDevice());
    opener->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(opener, &QProcess::finished, opener, &QObject::deleteLater);
    QObject::connect(opener, &QProcess::errorOccurred, opener, [=](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        opener->deleteLater();
        tryEach(folder, commands);
    });
    opener->start(command.front(), command.mid(1) + QStringList(folder));
}

void openFolder(const QString& folder) {
    tryEach(folder, {{"xdg-open"}, {"gio", "open"}});
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
