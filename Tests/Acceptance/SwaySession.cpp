#include "Acceptance/SwaySession.h"

#include <csignal>
#include <stdexcept>

#include <pwd.h>
#include <unistd.h>

namespace tests {
namespace {

constexpr const char* otherUser = "nobody";

// Compositors do not run for root: where the tests do, the session is another user's.
const passwd* sessionUser() {
    return geteuid() == 0 ? getpwnam(otherUser) : nullptr;
}

void giveToSession(const std::filesystem::path& folder) {
    const auto* const user = sessionUser();
    if (!user)
        return;
    std::vector<std::filesystem::path> files{folder};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        files.push_back(entry.path());
    for (const auto& file : files)
        if (lchown(file.c_str(), user->pw_uid, user->pw_gid) != 0)
            throw std::runtime_error(file.string() + " cannot be given to the session");
}

std::vector<std::string> inSession(const std::vector<std::string>& command) {
    std::vector<std::string> words{"env", "-u", "DISPLAY"};
    if (sessionUser())
        for (const char* word :
             {"setpriv", "--reuid", otherUser, "--regid", "nogroup", "--clear-groups", "--pdeathsig", "KILL"})
            words.emplace_back(word);
    words.insert(words.end(), command.begin(), command.end());
    return words;
}

} // namespace

SwaySession::SwaySession() {
    const auto program = (home / "installed/Lumarin").string();
    const auto configuration = home.write("sway", "output HEADLESS-1 resolution 1280x800\n"
                                                  "xwayland disable\n"
                                                  "bindsym --no-repeat Pause exec "
                                                      + program
                                                      + " press\n"
                                                        "bindsym --release Pause exec "
                                                      + program + " release\n");
    environment = {{"HOME", home.path()},
                   {"XDG_CONFIG_HOME", home / "config"},
                   {"XDG_DATA_HOME", home / "data"},
                   {"XDG_CACHE_HOME", home / "cache"},
                   {"XDG_RUNTIME_DIR", home.path()},
                   {"XDG_SESSION_TYPE", "wayland"},
                   {"XDG_CURRENT_DESKTOP", "sway"},
                   {"LANG", "C.UTF-8"},
                   {"LC_ALL", "C.UTF-8"},
                   {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
                   {"GSETTINGS_BACKEND", "memory"},
                   {"NO_AT_BRIDGE", "1"}};
    auto changes = environment;
    changes["WLR_BACKENDS"] = "headless";
    changes["WLR_LIBINPUT_NO_DEVICES"] = "1";
    changes["WLR_RENDERER"] = "pixman";
    giveToSession(home.path());
    compositor = std::make_unique<TestProcess>(inSession({"sway", "-c", configuration}), changes);
    const auto findSocket = [this] {
        for (const auto& entry : std::filesystem::directory_iterator(home.path()))
            if (entry.path().filename().string().starts_with("sway-ipc."))
                environment["SWAYSOCK"] = entry.path();
        return environment.contains("SWAYSOCK") && std::filesystem::exists(home / "wayland-1");
    };
    if (!comesTrue(findSocket))
        throw std::runtime_error("The compositor does not start:\n" + compositor->output());
    environment["WAYLAND_DISPLAY"] = "wayland-1";
    setenv("WAYLAND_DISPLAY", (home / "wayland-1").c_str(), 1);
}

SwaySession::~SwaySession() {
    compositor->signal(SIGTERM);
    compositor->awaitEnd();
    unsetenv("WAYLAND_DISPLAY");
}

std::unique_ptr<TestProcess> SwaySession::start(const std::vector<std::string>& command) const {
    giveToSession(home.path());
    return std::make_unique<TestProcess>(inSession(command), environment);
}

std::string SwaySession::run(const std::vector<std::string>& command) const {
    const auto process = start(command);
    const auto status = process->awaitEnd(20s);
    if (status != 0)
        throw std::runtime_error(command.front() + " failed:\n" + process->output());
    return process->output();
}

void SwaySession::awaitFrontWindow(const std::string& application) const {
    const auto isFront = [&] {
        const auto tree = run({"swaymsg", "-t", "get_tree", "-r"});
        const auto focused = tree.find("\"app_id\": \"" + application + "\"");
        return focused != std::string::npos;
    };
    if (!comesTrue(isFront, 20s))
        throw std::runtime_error("No window of " + application);
}

void SwaySession::keepScreenshot(const std::string& name) const {
    std::filesystem::create_directories(LUMARIN_SCREENSHOTS);
    run({"grim", home / "screen.png"});
    std::filesystem::copy_file(home / "screen.png",
                               std::filesystem::path(LUMARIN_SCREENSHOTS) / (name + ".png"),
                               std::filesystem::copy_options::overwrite_existing);
}

} // namespace tests
