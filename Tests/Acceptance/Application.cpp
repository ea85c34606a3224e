#include "Acceptance/Application.h"

#include "Support/Files.h"

namespace tests {

Application::Application(const Display& display, Person& person, const std::string& name,
                         const std::string& text)
    : user(person), file(display.home.write("letter.txt", text)) {
    std::vector<std::string> command{name, file};
    if (name == "featherpad")
        command.insert(command.begin() + 1, "--standalone");
    process = display.start(command);
    Display::awaitFrontWindow(name);
    // The window is there before the file is.
    std::this_thread::sleep_for(500ms);
    user.strike({Key::leftControl, Key::home});
}

void Application::selectNext(int characters) {
    for (int count = 0; count < characters; ++count)
        user.strike({Key::leftShift, Key::right});
    std::this_thread::sleep_for(100ms);
}

std::string Application::textWithTypedX() {
    const auto before = bytesOf(file);
    user.strike({Key::x});
    user.strike({Key::leftControl, Key::s});
    // The file is replaced in more than one step.
    std::string text;
    comesTrue([&] {
        const auto last = text;
        text = bytesOf(file);
        return text != before && !text.empty() && text == last;
    });
    return text;
}

} // namespace tests
