#include "Platform/Desktop/DesktopHost.h"

#include "Platform/Desktop/Session/LoadedHTTPSession.h"
#include "Platform/Desktop/Session/MachineFacts.h"
#include "Platform/Desktop/Session/SessionFacts.h"
#include "Platform/Desktop/Windows/DesktopWindowServer.h"
#include "Platform/Desktop/X11/Display/KeyboardNoticeFilter.h"
#include "Platform/Desktop/X11/Keys/TrustObstacle.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QWindow>

namespace platform::desktop {

namespace {

// The background waits so long: in that time the program is launched and the panel asks for its icon, which
// would have to share the processors.
constexpr auto launchTime = std::chrono::milliseconds(50);

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

// A certificate stands beside the Info.json that names it, the user's or the bundle's, or is one that a
// service of the user's own makes. That one may be yet to come.
std::filesystem::path placeOfCertificate(const std::filesystem::path& name, const Directories& folders) {
    for (const auto& folder : {folders.configuration, folders.resources}) {
        std::error_code error;
        if (std::filesystem::exists(folder / name, error))
            return folder / name;
    }
    return folders.applicationSupport / name;
}

// Those that a window manager knows: neither the menu nor the pill.
std::vector<QWindow*> openWindows() {
    std::vector<QWindow*> result;
    for (auto* window : QGuiApplication::topLevelWindows()) {
        const bool isOrdinary = window->type() == Qt::Window || window->type() == Qt::Dialog;
        if (isOrdinary && window->isVisible() && !window->flags().testFlag(Qt::BypassWindowManagerHint))
            result.push_back(window);
    }
    return result;
}

} // namespace

DesktopHost::DesktopHost(char* program, LogSink sink)
    : log(std::move(sink)),
      arguments(program),
      qt(std::make_unique<QApplication>(arguments.count(), arguments.values())),
      keyboardNotices(std::make_unique<KeyboardNoticeFilter>(display)),
      runLoop(std::make_unique<QtRunLoop>()),
      folders(sessionDirectories()),
      bundle(folders.resources, folders.configuration / "Info.json"),
      windows(std::make_unique<DesktopWindowServer>(*runLoop, bundle)),
      keys(std::make_unique<DesktopKeyboard>(display, *runLoop, postedKeys)),
      applications(display, ApplicationNames(dataFolders(), preferredLocales()), postedKeys),
      bar(display, bundle,
          [this](const std::string& command) {
              if (command == "terminate:")
                  app.terminate();
          }),
      autostart(folders.configuration.parent_path() / "autostart", folders.executable),
      defaults(folders.configuration / "defaults.json") {
    // A program without windows is running all the same.
    qt->setQuitOnLastWindowClosed(false);
    terminations.report([this] { endEventLoop(); });
    calls.report([this] { reopen(); });
    watchedDisplay = &display;
    qInstallMessageHandler(handleMessage);
}

DesktopHost::~DesktopHost() = default;

void DesktopHost::exit() {
    background.stop();
    if (backgroundThread.joinable())
        backgroundThread.join();
    pasteboard.reset();
    keys.reset();
    std::fflush(nullptr);
    std::_Exit(0);
}

void DesktopHost::runEventLoop() {
    if (!bundle.hasSoundOwnInfo())
        alertWindows.tell({Alert::Style::warning, texts.text("info.title"), texts.text("info.unusable"), {}});
    runLoop->postAfter(launchTime, [this] { startBackground(); });
    QApplication::exec();
}

void DesktopHost::startBackground() {
    backgroundThread = std::thread([this] { background.run(); });
    background.post(LoadedHTTPSession::prepare);
    applications.readNames();
}

void DesktopHost::endEventLoop() {
    // An open alert may not keep the program from it, as it may where windows are asked to close first.
    QApplication::exit();
}

void DesktopHost::activate() {
    for (auto* window : openWindows())
        bringToFront(display, static_cast<xcb_window_t>(window->winId()));
}

void DesktopHost::reopen() {
    if (!openWindows().empty())
        activate();
    else if (auto delegate = app.delegate.lock())
        delegate->applicationDidReopen();
}

bool DesktopHost::isProcessTrusted() {
    return trustObstacle(display) == nullptr;
}

bool DesktopHost::promptForTrust() {
    const auto* obstacle = trustObstacle(display);
    if (obstacle)
        alertWindows.tell({Alert::Style::warning, texts.text("trust.title"), texts.text(obstacle), {}});
    return !obstacle;
}

SystemFacts DesktopHost::systemFacts() {
    return machineFacts();
}

std::vector<std::string> DesktopHost::preferredLanguages() {
    return preferredLanguageTags();
}

std::shared_ptr<HTTPSession> DesktopHost::makeHTTPSession(HTTPSessionConfiguration configuration) {
    std::optional<std::filesystem::path> authority;
    if (auto certificate = bundle.info("LumarinServiceCertificate"))
        authority = placeOfCertificate(*certificate, folders);
    return std::make_shared<LoadedHTTPSession>(configuration, std::move(authority));
}

} // namespace platform::desktop
