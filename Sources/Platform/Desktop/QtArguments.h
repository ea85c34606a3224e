#pragma once

#include <array>
#include <cstdlib>
#include <string>

namespace platform::desktop {

// What Qt is started with. It stays on X where there is one, in a Wayland session too: there it can place its
// windows and menus. Said by argument: a variable of the environment would go to the programs that are
// started from here.
class QtArguments {
public:
    // `program` outlives the arguments.
    explicit QtArguments(char* program) : words{program, option.data(), plugin.data(), nullptr} {}
    QtArguments(const QtArguments&) = delete;
    QtArguments& operator=(const QtArguments&) = delete;

    // Qt takes out what it has understood.
    int& count() { return count_; }
    char** values() { return words.data(); }

private:
    std::string option = "-platform";
    std::string plugin = std::getenv("DISPLAY") || !std::getenv("WAYLAND_DISPLAY") ? "xcb" : "wayland";
    std::array<char*, 4> words;
    int count_ = 3;
};

} // namespace platform::desktop
