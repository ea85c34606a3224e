#pragma once

#include "Acceptance/Display.h"
#include "Desktop/Person.h"

namespace tests {

// A text editor that people use, with a file open in it and the caret at its beginning.
class Application {
public:
    // "mousepad" or "featherpad".
    Application(const Display& display, Person& person, const std::string& name, const std::string& text);

    // Selects from the caret on.
    void selectNext(int characters);

    // What the text is after an x has been typed where the caret is.
    std::string textWithTypedX();

private:
    Person& user;
    std::filesystem::path file;
    std::unique_ptr<TestProcess> process;
};

} // namespace tests
