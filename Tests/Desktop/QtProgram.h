#pragma once

#include <array>
#include <string>

namespace tests {

// The toolkit's application object, one kind of it, as a program has it that was started on that platform.
template <typename Application>
class QtProgram {
public:
    explicit QtProgram(const std::string& platform = "xcb") : words{"test", "-platform", platform} {}

private:
    int argumentCount = 3;
    std::array<std::string, 3> words;
    std::array<char*, 4> arguments{words[0].data(), words[1].data(), words[2].data(), nullptr};
    const Application application{argumentCount, arguments.data()};
};

} // namespace tests
