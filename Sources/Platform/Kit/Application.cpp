#include "Platform/Kit/Application.h"

#include "Platform/Host.h"

namespace platform {

void Application::run() {
    Host::current().mainRunLoop().post([delegate = delegate] {
        if (auto launched = delegate.lock())
            launched->applicationDidFinishLaunching();
    });
    Host::current().runEventLoop();
}

void Application::activate() {
    Host::current().activate();
}

void Application::terminate() {
    Host::current().endEventLoop();
}

} // namespace platform
