#include "Platform/Desktop/DesktopHost.h"

#include "Platform/Desktop/DesktopWindowServer.h"
#include "Platform/Desktop/KeyboardNoticeFilter.h"
#include "Platform/Desktop/SystemFacts.h"
#include "Platform/Foundation/CurlSession.h"

#include <atomic>
#include <cstdio>

#include <QApplication>

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

DesktopHost::DesktopHost(int& argumentCount, char** arguments)
    : qt(std::make_unique<QApplication>(argumentCount, arguments)),
      keyboardNotices(std::make_unique<KeyboardNoticeFilter>(display)),
      runLoop(std::make_unique<QtRunLoop>()),
      windows(std::make_unique<DesktopWindowServer>(*runLoop)),
      keys(std::make_unique<DesktopKeyboard>(display, *runLoop, postedKeys)),
      applications(display, ApplicationNames(dataFolders(), preferredLocales())),
      folders(sessionDirectories()),
      bundle(folders.resources),
      defaults(folders.configuration / "defaults.json") {
    // A program without windows is running all the same.
    qt->setQuitOnLastWindowClosed(false);
    signals.report([this] { endEventLoop(); });
    watchedDisplay = &display;
    qInstallMessageHandler(handleMessage);
}

DesktopHost::~DesktopHost() {
    qInstallMessageHandler(nullptr);
    watchedDisplay = nullptr;
}

void DesktopHost::runEventLoop() {
    QApplication::exec();
}

void DesktopHost::endEventLoop() {
    QApplication::quit();
}

bool DesktopHost::isProcessTrusted() {
    return KeyWatch::isPossible(display) && !isWaylandSession(display);
}

std::vector<std::string> DesktopHost::preferredLanguages() {
    return preferredLanguageTags();
}

std::shared_ptr<HTTPSession> DesktopHost::makeHTTPSession(HTTPSessionConfiguration configuration) {
    std::optional<std::filesystem::path> authority;
    if (auto certificate = bundle.info("LumarinServiceCertificate"))
        authority = bundle.path() / *certificate;
    return std::make_shared<CurlSession>(configuration, authority);
}

} // namespace platform::desktop
