#include "Platform/Desktop/DesktopHost.h"
#include "Platform/Desktop/SessionFacts.h"
#include "Platform/Desktop/SingleInstance.h"
#include "main/Launch.h"

#include <csignal>
#include <cstdio>

int main(int argumentCount, char** arguments) {
    using namespace platform::desktop;
    // Whoever reads our output may go away.
    std::signal(SIGPIPE, SIG_IGN);
    const SingleInstance instance(sessionDirectories().configuration);
    if (instance.isTaken()) {
        std::fputs("Lumarin is already running.\n", stderr);
        return 1;
    }
    try {
        DesktopHost host(argumentCount, arguments);
        platform::Host::setCurrent(&host);
        lumarin::beginLog();
        lumarin::runApp();
        return 0;
    } catch (const DisplayError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
