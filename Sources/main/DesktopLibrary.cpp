#include "main/DesktopLibrary.h"

#include "Core/Logger.h"
#include "Platform/Desktop/WaylandHost.h"
#include "Platform/Desktop/X11Host.h"
#include "main/Launch.h"

#include <cstdio>

namespace {

[[noreturn]] void runOn(platform::desktop::DesktopHost& host) {
    platform::Host::setCurrent(&host);
    lumarin::beginLog();
    lumarin::runApp();
    host.exit();
}

} // namespace

extern "C" int runLumarin(char* program, const platform::desktop::SingleInstance& place) {
    using namespace platform::desktop;
    try {
        if (WaylandHost::isPossible()) {
            WaylandHost host(program, place, lumarin::LumLog::log);
            runOn(host);
        }
        X11Host host(program, place, lumarin::LumLog::log);
        runOn(host);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
