// How long the program takes until its icon is in the panel, and what memory it rests with, beside a program
// that has an icon and nothing else; and how long a change of the status menu takes.

#include "Acceptance/AcceptanceProgram.h"
#include "Acceptance/Panel.h"
#include "Core/LocalizationManager.h"
#include "Platform/Desktop/Tray/DesktopStatusItem.h"
#include "Platform/Desktop/X11/Display/X11Panel.h"
#include "Platform/Headless/HeadlessHost.h"
#include "main/AppDelegate.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include <QApplication>

using namespace tests;

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int launches = 60;
// One of so many.
constexpr int launchesForMemory = 10;
constexpr int iconSide = 22;

// In MiB.
double residentMemory(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:"))
            return std::stod(line.substr(6)) / 1024;
    return 0;
}

// A desktop on which a program is started again and again.
struct Launches {
    std::vector<double> times;
    std::vector<double> memory;

    void add(const std::vector<std::string>& command) {
        panel.forgetItem();
        const auto start = Clock::now();
        const auto program = display.start(command);
        panel.awaitItem();
        // It is seen when the panel has been given the picture.
        if (panel.icon(iconSide).isNull())
            throw std::runtime_error("The icon has no picture");
        times.push_back(Milliseconds(Clock::now() - start).count());
        if (times.size() % launchesForMemory != 0)
            return;
        std::this_thread::sleep_for(2s);
        memory.push_back(residentMemory(program->pid()));
    }

    const tests::Display& display;
    Panel& panel;
};

void print(const char* name, const char* unit, std::vector<double>& program, std::vector<double>& bare) {
    for (auto* values : {&program, &bare})
        std::ranges::sort(*values);
    for (const auto& [kind, share] : {std::pair("median", 0.5), std::pair("lowest", 0.0)}) {
        const double own = program[std::size_t(share * double(program.size()))];
        const double other = bare[std::size_t(share * double(bare.size()))];
        std::printf("  %-26s %-6s %10.1f %s %10.1f %s %8.2f\n", name, kind, own, unit, other, unit,
                    own / other);
    }
}

void measureLaunches(int argumentCount, char** arguments) {
    // For the panel.
    const QCoreApplication application(argumentCount, arguments);
    const ServiceDouble service;
    const TemporaryFolder folder;
    const auto installed = installProgram(folder, service);
    tests::Display display;
    Panel panel(display);
    panel.appear();
    Launches program{{}, {}, display, panel};
    Launches bare{{}, {}, display, panel};
    for (int number = 0; number < launches; ++number) {
        program.add({installed});
        bare.add({LUMARIN_BARE_TRAY, LUMARIN_RESOURCES "/Symbols/character.bubble.svg"});
    }
    std::printf("%d launches %36s %14s %8s\n", launches, "the program", "a bare icon", "ratio");
    print("from exec to the icon", "ms ", program.times, bare.times);
    print("resident memory at rest", "MiB", program.memory, bare.memory);
}

// A machine in memory, but for its status bar.
class Machine : public platform::headless::HeadlessHost {
public:
    explicit Machine(const TemporaryFolder& folder)
        : HeadlessHost(folder.path(), LUMARIN_RESOURCES), bundle(LUMARIN_RESOURCES) {
        setCurrent(this);
    }

    platform::StatusBar& statusBar() override { return tray; }

private:
    class Tray : public platform::StatusBar {
    public:
        explicit Tray(const platform::Bundle& drawings) : bundle(drawings) {}

        std::unique_ptr<platform::StatusItem> makeStatusItem() override {
            return std::make_unique<platform::desktop::DesktopStatusItem>(panel, bundle,
                                                                          [](const std::string&) {});
        }

    private:
        const platform::desktop::XConnection x;
        platform::desktop::X11Panel panel{x};
        const platform::Bundle& bundle;
    };

    platform::Bundle bundle;
    Tray tray{bundle};
};

void measureMenu(int argumentCount, char** arguments) {
    constexpr int changes = 2000;
    tests::Display display;
    const QApplication application(argumentCount, arguments);
    Panel panel(display);
    panel.appear();
    const TemporaryFolder folder;
    Machine machine(folder);
    const auto delegate = std::make_shared<lumarin::AppDelegate>();
    delegate->applicationDidFinishLaunching();
    // The icon comes once the panel has answered.
    tests::comesTrue([&] {
        QCoreApplication::processEvents();
        return delegate->statusItem()->isVisible();
    });
    panel.awaitItem();
    std::vector<double> times;
    for (int change = 0; change < changes; ++change) {
        const auto start = Clock::now();
        machine.notificationCenter().post(lumarin::LocalizationManager::languageChanged);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        times.push_back(Milliseconds(Clock::now() - start).count());
    }
    std::ranges::sort(times);
    std::printf("%d changes of the menu %24s %14s\n  %-32s %10.3f ms %11.3f ms\n", changes, "median", "90 %",
                "from the change to the menu", times[times.size() / 2], times[times.size() * 9 / 10]);
}

} // namespace

int main(int argumentCount, char** arguments) {
    measureMenu(argumentCount, arguments);
    measureLaunches(argumentCount, arguments);
    return 0;
}
