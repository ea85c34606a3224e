#include "Acceptance/Display.h"

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <algorithm>

namespace tests {

Display::Display(const std::vector<std::string>& keyboardMap) {
    const auto path = home.path().string();
    environment = {{"DISPLAY", server.name()},
                   {"HOME", path},
                   {"XDG_CONFIG_HOME", path + "/config"},
                   {"XDG_DATA_HOME", path + "/data"},
                   {"XDG_CACHE_HOME", path + "/cache"},
                   {"XDG_RUNTIME_DIR", path},
                   {"LANG", "C.UTF-8"},
                   // Nobody of the person's real session takes part.
                   {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
                   {"GSETTINGS_BACKEND", "memory"},
                   {"NO_AT_BRIDGE", "1"}};
    std::vector<std::string> map{"setxkbmap", "-layout"};
    map.insert(map.end(), keyboardMap.begin(), keyboardMap.end());
    if (auto setting = start(map); setting->awaitEnd() != 0)
        throw std::runtime_error("No keyboard map: " + setting->output());
    windowManager.emplace(environment);
}

std::unique_ptr<TestProcess> Display::start(const std::vector<std::string>& command) const {
    return std::make_unique<TestProcess>(command, environment);
}

void Display::keepScreenshot(const std::string& name) const {
    const std::filesystem::path folder(LUMARIN_SCREENSHOTS);
    std::filesystem::create_directories(folder);
    start({"maim", folder / (name + ".png")})->awaitEnd();
}

void Display::awaitFrontWindow(const std::string& className) {
    const platform::desktop::XConnection x;
    auto isInFront = [&] {
        const auto window = x.propertyValue(x.root(), "_NET_ACTIVE_WINDOW").value_or(XCB_NONE);
        auto names = x.property(window, XCB_ATOM_WM_CLASS).value_or(platform::desktop::XProperty{}).bytes;
        std::ranges::transform(names, names.begin(),
                               [](unsigned char letter) { return std::tolower(letter); });
        return names.find(className) != std::string::npos;
    };
    if (!comesTrue(isInFront, 20s))
        throw std::runtime_error("No window of " + className + " comes to the front");
}

} // namespace tests
