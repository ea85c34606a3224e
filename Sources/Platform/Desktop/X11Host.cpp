#include "Platform/Desktop/X11Host.h"

#include "Platform/Desktop/Session/SessionFacts.h"
#include "Platform/Desktop/X11/Keys/TrustObstacle.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"

#include <atomic>
#include <cstdio>

#include <QGuiApplication>
#include <QWindow>

namespace platform::desktop {

namespace {

// Qt's own connection, for its messages, which come without a context.
constinit std::atomic<xcb_connection_t*> qtsConnection = nullptr;

// Qt ends the program by itself when it loses its connection, while our threads still run; it complains
// first.
void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (auto* connection = qtsConnection.load(); connection && xcb_connection_has_error(connection))
        endForLostDisplay();
    auto line = qFormatLogMessage(type, context, text).toStdString() + '\n';
    std::fputs(line.c_str(), stderr);
}

} // namespace

X11Host::X11Host(char* program, const SingleInstance& place, LogSink sink)
    : DesktopHost(program, place, std::move(sink)),
      applications(x, ApplicationNames(dataFolders(), preferredLocales()), postedKeys) {
    if (const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        qtsConnection = application->connection();
    qInstallMessageHandler(handleMessage);
}

const char* X11Host::trustObstacle() {
    return desktop::trustObstacle(x);
}

void X11Host::bringForward(QWindow& window) {
    bringToFront(x, static_cast<xcb_window_t>(window.winId()));
}

void X11Host::leaveSession() {
    pasteboard.reset();
    keys.reset();
}

} // namespace platform::desktop
