#pragma once

#include "Platform/Desktop/Windows/Display.h"
#include "Platform/Desktop/X11/Display/Compositor.h"
#include "Platform/Desktop/X11/Display/EventReader.h"
#include "Platform/Desktop/X11/Display/StackingWatch.h"

namespace platform::desktop {

// An X server's screen, on a connection of its own. Main thread.
class X11Display : public Display {
public:
    // Throws DisplayError.
    X11Display();

    std::vector<Monitor> monitors() override;
    const Monitor& mainMonitor(const std::vector<Monitor>& monitors) override;
    Backdrop backdrop() override { return compositor.backdrop(); }
    std::unique_ptr<Surface> makeSurface(int margin) override;

private:
    void hearOfMonitors();
    void handle(const xcb_generic_event_t& event);
    void reportChange() const;

    const XConnection x;
    std::uint8_t monitorEvents = 0;
    const EventReader events{x, [this](const xcb_generic_event_t& event) { handle(event); }};
    const Compositor compositor{x, [this] { reportChange(); }};
    StackingWatch stacking{x};
};

} // namespace platform::desktop
