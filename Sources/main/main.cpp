#include "Core/Logger.h"
#include "Platform/Desktop/Session/SessionFacts.h"
#include "Platform/Desktop/Session/SingleInstance.h"
#include "Platform/Desktop/WaylandHost.h"
#include "Platform/Desktop/X11Host.h"
#include "main/CommandLine.h"
#include "main/Launch.h"

#include <csignal>
#include <cstdio>

namespace {

using lumarin::CommandLine;
using platform::desktop::SingleInstance;

int tellRunningCopy(const SingleInstance& place, const std::string& command) {
    if (place.isTaken() && place.send(command))
        return 0;
    std::fputs(place.isTaken() ? "Lumarin is running and cannot be reached.\n" : "Lumarin is not running.\n",
               stderr);
    return 1;
}

int openRunningCopy(const SingleInstance& place) {
    const bool isTold = place.send("open");
    std::fputs(isTold ? "Lumarin is already running; its menu or open window comes to the front.\n"
                      : "Lumarin is already running and cannot be told to come to the front.\n",
               stderr);
    return isTold ? 0 : 1;
}

[[noreturn]] void runIn(platform::desktop::DesktopHost& host) {
    platform::Host::setCurrent(&host);
    lumarin::beginLog();
    lumarin::runApp();
    host.exit();
}

int run(char* program) {
    using namespace platform::desktop;
    const SingleInstance place(sessionDirectories().configuration);
    if (place.isTaken())
        return openRunningCopy(place);
    try {
        if (WaylandHost::isPossible()) {
            WaylandHost host(program, place, lumarin::LumLog::log);
            runIn(host);
        }
        X11Host host(program, place, lumarin::LumLog::log);
        runIn(host);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    using namespace platform::desktop;
    // Whoever reads our output may go away.
    std::signal(SIGPIPE, SIG_IGN);
    const CommandLine line({arguments, static_cast<std::size_t>(argumentCount)});
    switch (line.purpose) {
    case CommandLine::Purpose::run:
        return run(arguments[0]);
    case CommandLine::Purpose::tellRunningCopy:
        return tellRunningCopy(SingleInstance(sessionDirectories().configuration), line.command);
    case CommandLine::Purpose::help:
        std::fputs(CommandLine::usage.data(), stdout);
        return 0;
    case CommandLine::Purpose::version: {
        const platform::Bundle bundle(sessionDirectories().resources, {});
        std::printf("Lumarin %s\n", bundle.info("CFBundleShortVersionString").value_or("").c_str());
        return 0;
    }
    case CommandLine::Purpose::misunderstood:
        std::fputs(CommandLine::usage.data(), stderr);
        return 2;
    }
}
