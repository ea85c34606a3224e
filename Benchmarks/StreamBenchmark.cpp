// What the program does with a translation that comes in single characters, on a machine in memory whose
// background is real: how long a single one takes to the pill, and what a whole flood of them costs.

#include "Core/TranslationStateMachine.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Headless/HeadlessHost.h"
#include "Support/Streams.h"
#include "Support/TemporaryFolder.h"

#include <algorithm>
#include <cstdio>
#include <sys/resource.h>

namespace {

using namespace lumarin;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

class ThreadedHost : public platform::headless::HeadlessHost {
public:
    using HeadlessHost::HeadlessHost;
    platform::Executor& backgroundExecutor() override { return worker.runLoop(); }

private:
    platform::WorkerThread worker;
};

// A service whose answer the benchmark sends by hand.
class OpenStream : public platform::HTTPSession {
public:
    std::unique_ptr<platform::HTTPExchange> open(platform::HTTPRequest request) override {
        auto opened = std::make_shared<platform::HTTPEvents>();
        opened->push(platform::HTTPResponse{200});
        if (request.method == "POST")
            events = opened;
        else
            opened->finish();
        return std::make_unique<platform::HTTPExchange>(opened);
    }

    // Its own thread fills it.
    std::atomic<std::shared_ptr<platform::HTTPEvents>> events;
};

class Gesture {
public:
    Gesture() {
        host.sessionMaker = [this](const auto&) { return service; };
        host.field.setText("报价");
        platform::Host::setCurrent(&host);
        machine = std::make_shared<TranslationStateMachine>();
        machine->setup();
        host.keys.pressFn();
        until([&] { return service->events.load() != nullptr; });
    }
    ~Gesture() {
        machine->state = TranslationState::idle;
        host.keys.releaseFn();
    }

    void send(const std::string& bytes) const { service->events.load()->push(bytes); }
    void end() const { service->events.load()->finish(); }

    template <typename Condition>
    void until(Condition condition) {
        while (!condition())
            host.advance(1us);
    }

    std::string shown() const {
        const auto pill = host.windows.shown.back()->presentation(host.clock.now());
        return pill.sublayers.at(0).sublayers.at(2).drawing.lines.at(0).text;
    }

    const tests::TemporaryFolder folder;
    ThreadedHost host{folder.path(), LUMARIN_RESOURCES};
    const std::shared_ptr<OpenStream> service = std::make_shared<OpenStream>();
    std::shared_ptr<TranslationStateMachine> machine;
};

void measureSinglePieces() {
    Gesture gesture;
    std::vector<Milliseconds> times;
    for (std::size_t length = 1; length <= 500; ++length) {
        const auto sent = Clock::now();
        gesture.send(tests::deltaLine("x"));
        gesture.until([&] { return gesture.shown().size() == length; });
        times.push_back(Clock::now() - sent);
        std::this_thread::sleep_for(1ms);
    }
    const auto first = times.front();
    std::ranges::sort(times);
    std::printf("single pieces to the pill: first %.3f ms, median %.3f ms, 99 %% %.3f ms\n", first.count(),
                times[times.size() / 2].count(), times[times.size() * 99 / 100].count());
    gesture.end();
    gesture.until([&] { return gesture.machine->state.value() == TranslationState::preview; });
}

void measureFlood(std::size_t length) {
    Gesture gesture;
    // As much at once as a transfer hands over.
    std::string block;
    for (std::size_t piece = 0; piece < 100; ++piece)
        block += tests::deltaLine("x");
    const auto begin = Clock::now();
    for (std::size_t sent = 0; sent < length; sent += 100)
        gesture.send(block);
    gesture.end();
    gesture.until([&] { return gesture.machine->state.value() == TranslationState::preview; });
    const Milliseconds time = Clock::now() - begin;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%zu pieces at once: %.0f ms, %ld MB at most so far\n", length, time.count(),
                usage.ru_maxrss / 1024);
}

} // namespace

// The lengths of the floods, in characters.
int main(int count, char** arguments) {
    measureSinglePieces();
    for (int number = 1; number < count; ++number)
        measureFlood(std::stoul(arguments[number]));
    return 0;
}
