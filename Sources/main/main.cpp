#include "CommandLine.h"
#include "DesktopLibrary.h"
#include "Platform/Desktop/Instance/ProgramFiles.h"
#include "Platform/Desktop/Instance/SingleInstance.h"
#include "Platform/Foundation/Bundle.h"

#include <csignal>
#include <cstdio>

#include <dlfcn.h>

// The commands, which a desktop runs for its keys, wait for nothing that they don't need: all else is in a
// library that is loaded here.
namespace {

using namespace platform::desktop;
using lumarin::CommandLine;

int tellRunningCopy(const std::string& command) {
    const bool isTold = callRunningCopy(configurationFolder(), command);
    if (!isTold)
        std::fputs("Lumarin is not running, or cannot be reached.\n", stderr);
    return isTold ? 0 : 1;
}

int openRunningCopy() {
    const bool isTold = callRunningCopy(configurationFolder(), "open");
    std::fputs(isTold ? "Lumarin is already running; its menu or open window comes to the front.\n"
                      : "Lumarin is already running and cannot be told to come to the front.\n",
               stderr);
    return isTold ? 0 : 1;
}

int run(char* program) {
    const SingleInstance place(configurationFolder());
    if (place.isTaken())
        return openRunningCopy();
    auto* const library = loadLibrary(lumarin::desktopLibraryFile);
    auto* const start = library ? dlsym(library, lumarin::runnerName) : nullptr;
    if (!start) {
        const char* const reason = dlerror();
        std::fprintf(stderr, "Lumarin is not installed completely: %s cannot be loaded. %s\n",
                     lumarin::desktopLibraryFile, reason ? reason : "");
        return 1;
    }
    return reinterpret_cast<lumarin::Runner*>(start)(program, place);
}

} // namespace

int main(int argumentCount, char** arguments) {
    // Whoever reads our output may go away.
    std::signal(SIGPIPE, SIG_IGN);
    const CommandLine line({arguments, static_cast<std::size_t>(argumentCount)});
    switch (line.purpose) {
    case CommandLine::Purpose::run:
        return run(arguments[0]);
    case CommandLine::Purpose::tellRunningCopy:
        return tellRunningCopy(line.command);
    case CommandLine::Purpose::help:
        std::fputs(CommandLine::usage.data(), stdout);
        return 0;
    case CommandLine::Purpose::version:
        std::printf(
            "Lumarin %s\n",
            platform::Bundle(resourcesFolder(), {}).info("CFBundleShortVersionString").value_or("").c_str());
        return 0;
    case CommandLine::Purpose::misunderstood:
        std::fputs(CommandLine::usage.data(), stderr);
        return 2;
    }
}
