#pragma once

#include "Acceptance/Display.h"
#include "Acceptance/ServiceDouble.h"
#include "Desktop/Person.h"

namespace tests {

// The real program on the display, with a copy of its resources that names the test's service.
class AcceptanceProgram {
public:
    // An error's message is shown for two seconds, in which the key is not heeded.
    static constexpr auto errorTime = 2200ms;

    AcceptanceProgram(const Display& display, const ServiceDouble& service);

    // Holds the key until the translation is there, lets go, and waits until it has been pasted. When the key
    // was let go.
    Clock::time_point gesture(Person& person);

    // Lets go of the key long before the translation is there.
    void quickGesture(Person& person);

    // Holds the key and lets go where there is nothing to translate. Returns when the message has gone.
    void emptyGesture(Person& person);

    TestProcess& process() { return *running; }

private:
    std::unique_ptr<TestProcess> running;
};

// The command that starts the program from a folder of its own there.
std::string installProgram(const TemporaryFolder& folder, const ServiceDouble& service);

} // namespace tests
