#include "Platform/Desktop/DesktopHost.h"

#include "Platform/Desktop/Session/LoadedHTTPSession.h"
#include "Platform/Desktop/Session/MachineFacts.h"
#include "Platform/Desktop/Session/SessionFacts.h"

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QWindow>

namespace platform::desktop {

namespace {

// The background waits so long: in that time the program is launched and the panel asks for its icon, which
// would have to share the processors.
constexpr auto launchTime = std::chrono::milliseconds(50);

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

// It is written by hand and may hold a token.
void makePrivate(const std::filesystem::path& ownInfo) {
    std::error_code ignored;
    std::filesystem::permissions(
        ownInfo, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
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

// Whether the program starts at login is the login item's to say: a session that the desktop has saved would
// start it also where that is off, and a second time where it is on.
void keepOutOfSavedSessions(const QGuiApplication& application) {
    const auto refuse = [](QSessionManager& session) {
        session.setRestartHint(QSessionManager::RestartNever);
    };
    QObject::connect(&application, &QGuiApplication::saveStateRequest, refuse);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, refuse);
}

} // namespace

DesktopHost::DesktopHost(char* program, const SingleInstance& place, LogSink sink)
    : arguments(program),
      qt(std::make_unique<QApplication>(arguments.count(), arguments.values())),
      log(std::move(sink)),
      runLoop(std::make_unique<QtRunLoop>()),
      folders(sessionDirectories()),
      bundle(folders.resources, folders.configuration / "Info.json"),
      instance(place),
      autostart(folders.configuration.parent_path() / "autostart", folders.executable),
      defaults(folders.configuration / "defaults.json") {
    // A program without windows is running all the same.
    qt->setQuitOnLastWindowClosed(false);
    keepOutOfSavedSessions(*qt);
    makePrivate(folders.configuration / "Info.json");
    terminations.report([this] { endEventLoop(); });
    if (instance.descriptor() >= 0) {
        calls = std::make_unique<QSocketNotifier>(instance.descriptor(), QSocketNotifier::Read);
        QObject::connect(calls.get(), &QSocketNotifier::activated, [this] { heedCalls(); });
    }
}

DesktopHost::~DesktopHost() = default;

void DesktopHost::exit() {
    background.stop();
    if (backgroundThread.joinable())
        backgroundThread.join();
    leaveSession();
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
    needs.follow();
    prepareRest();
}

void DesktopHost::endEventLoop() {
    // An open alert may not keep the program from it, as it may where windows are asked to close first.
    QApplication::exit();
}

void DesktopHost::activate() {
    for (auto* window : openWindows())
        bringForward(*window);
}

void DesktopHost::perform(const std::string& command) {
    if (command == "terminate:")
        app.terminate();
}

void DesktopHost::heedCalls() {
    while (const auto command = instance.receive()) {
        if (*command == "open")
            reopen();
        else if (!performCall(*command))
            log("[Hotkey] Not possible in this session: Lumarin " + *command);
    }
}

void DesktopHost::reopen() {
    if (!openWindows().empty())
        activate();
    else if (auto delegate = app.delegate.lock())
        delegate->applicationDidReopen();
}

bool DesktopHost::promptForTrust() {
    const auto* obstacle = trustObstacle();
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
