#pragma once

#include <array>
#include <string>

namespace platform::desktop {

// What Qt is started with. It has to stay on X, which it would leave in a Wayland session if it could. Said
// by argument: a variable of the environment would go to the programs that are started from here.
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
    std::string plugin = "xcb";
    std::array<char*, 4> words;
    int count_ = 3;
};

} // namespace platform::desktop
