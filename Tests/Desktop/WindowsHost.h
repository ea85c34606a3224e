#pragma once

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Windows/DesktopWindowServer.h"
#include "Platform/Desktop/X11/Display/X11Display.h"
#include "Platform/Headless/HeadlessHost.h"
#include "Support/TemporaryFolder.h"

namespace platform::desktop {

// A machine in memory, but for its windows and its clock.
class WindowsHost : public headless::HeadlessHost {
public:
    WindowsHost() : HeadlessHost(folder.path(), folder.path()) { setCurrent(this); }

    WindowServer& windowServer() override { return server; }
    RunLoop& mainRunLoop() override { return loop; }

    DesktopWindowServer& desktop() { return server; }

private:
    static inline const tests::TemporaryFolder folder;
    QtRunLoop loop;
    X11Display display;
    DesktopWindowServer server{display, loop, mainBundle()};
};

} // namespace platform::desktop
