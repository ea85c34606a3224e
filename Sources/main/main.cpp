#include "Core/Logger.h"
#include "Platform/Desktop/Session/SessionFacts.h"
#include "Platform/Desktop/Session/SingleInstance.h"
#include "Platform/Desktop/X11Host.h"
#include "main/Launch.h"

#include <csignal>
#include <cstdio>

int main(int /*argumentCount*/, char** arguments) {
    using namespace platform::desktop;
    // Whoever reads our output may go away.
    std::signal(SIGPIPE, SIG_IGN);
    const SingleInstance instance(sessionDirectories().configuration);
    if (instance.isTaken()) {
        const bool isTold = instance.callOwner();
        std::fputs(isTold ? "Lumarin is already running; its menu or open window comes to the front.\n"
                          : "Lumarin is already running and cannot be told to come to the front.\n",
                   stderr);
        return isTold ? 0 : 1;
    }
    try {
        X11Host host(arguments[0], lumarin::LumLog::log);
        platform::Host::setCurrent(&host);
        lumarin::beginLog();
        lumarin::runApp();
        host.exit();
    } catch (const DisplayError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
