// What the real program adds to the fixed pauses of a gesture, as a person, an editor and a service see it
// from outside. A release that comes later than the translation is the usual one: what follows the answer
// then falls into two stretches, to the translation being ready and from the key's release to the paste.

#include "Acceptance/AcceptanceProgram.h"
#include "Acceptance/TestEditor.h"

#include <algorithm>
#include <cstdio>

using namespace tests;

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int gestures = 60;

// The pauses that the gesture takes however fast the machine is.
struct Pauses {
    Milliseconds beforeRequest;
    Milliseconds beforePaste;
};

class Times {
public:
    void add(Clock::duration time) { values.push_back(time); }

    void print(const char* name, Milliseconds pauses) {
        std::ranges::sort(values);
        std::printf("  %-42s %9.2f %9.2f %9.2f %9.2f\n", name, pauses.count(), (median() - pauses).count(),
                    (values[values.size() * 9 / 10] - pauses).count(), (values.back() - pauses).count());
    }

private:
    Milliseconds median() const { return values[values.size() / 2]; }

    std::vector<Milliseconds> values;
};

void measure(const char* name, KeyboardKind keyboard, bool isPartial, Pauses pauses) {
    const Display display;
    ServiceDouble service;
    // Long enough for the request to be seen apart from the answer.
    service.thinking = 20ms;
    Person person(keyboard);
    AcceptanceProgram program(display, service);
    const TestEditor editor;
    Times request;
    Times ready;
    Times paste;
    Times answerToPaste;
    for (int number = 0; number < gestures; ++number) {
        editor.setUp(isPartial ? "[Please send] the price list." : "Please send the price list.");
        const auto pressed = person.press(Key::rightControl);
        const auto isReady = program.process().awaitLine("[SM] Done: ").time;
        const auto released = person.release(Key::rightControl);
        program.process().awaitLine("[SM] Injected");
        const auto pasted = editor.pasteKeyTime();
        request.add(service.requestTime() - pressed);
        ready.add(isReady - service.answerTime());
        paste.add(pasted - released);
        answerToPaste.add(isReady - service.answerTime() + (pasted - released));
    }
    std::printf("%s, %d gestures\n  %-42s %9s %9s %9s %9s\n", name, gestures, "(milliseconds)", "pauses",
                "median +", "90 % +", "max +");
    request.print("key's press to request at the service", pauses.beforeRequest);
    ready.print("answer's last byte to translation ready", Milliseconds(0));
    paste.print("key's release to paste at the editor", pauses.beforePaste);
    answerToPaste.print("both: answer's last byte to paste", pauses.beforePaste);
}

} // namespace

int main() {
    constexpr Pauses ofSelection{50ms, 200ms};
    constexpr Pauses ofWholeField{200ms, 250ms};
    measure("A selection", KeyboardKind::ofPrograms, true, ofSelection);
    measure("A whole field", KeyboardKind::ofPrograms, false, ofWholeField);
    // Another device than the one that programs type on, which the server treats differently.
    measure("A selection, from a real keyboard", KeyboardKind::physical, true, ofSelection);
    measure("A whole field, from a real keyboard", KeyboardKind::physical, false, ofWholeField);
    return 0;
}
