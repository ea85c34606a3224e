#include "Platform/Desktop/X11Host.h"

#include "Platform/Desktop/Session/SessionFacts.h"
#include "Platform/Desktop/X11/Keys/TrustObstacle.h"
#include "Platform/Desktop/X11/Server/ActiveWindow.h"

#include <atomic>
#include <cstdio>

#include <QWindow>

namespace platform::desktop {

namespace {

// The connection that tells whether the display is there, for Qt's messages, which come without a context.
constinit std::atomic<const XConnection*> watchedDisplay = nullptr;

// Qt ends the program by itself when it loses its connection, while our threads still run; it complains
// first.
void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (const auto* display = watchedDisplay.load(); display && display->isBroken())
        endForLostDisplay();
    auto line = qFormatLogMessage(type, context, text).toStdString() + '\n';
    std::fputs(line.c_str(), stderr);
}

} // namespace

X11Host::X11Host(char* program, LogSink sink)
    : DesktopHost(program, std::move(sink)),
      applications(x, ApplicationNames(dataFolders(), preferredLocales()), postedKeys) {
    watchedDisplay = &x;
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
