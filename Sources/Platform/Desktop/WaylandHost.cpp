#include "Platform/Desktop/WaylandHost.h"

#include "Platform/Desktop/Session/SessionFacts.h"

#include <cstdlib>

#include <QWindow>

namespace platform::desktop {

bool WaylandHost::isPossible() {
    // An X11 session has none, though there may be a compositor somewhere.
    if (!std::getenv("WAYLAND_DISPLAY"))
        return false;
    try {
        const WaylandConnection wayland;
        return VirtualKeyboard::isOffered(wayland) && DataControl::isOffered(wayland)
               && LayerShell::isOffered(wayland);
    } catch (const WaylandError&) {
        return false;
    }
}

WaylandHost::WaylandHost(char* program, const SingleInstance& place, LogSink sink)
    : DesktopHost(program, place, std::move(sink)),
      display([this]() -> std::optional<std::uint32_t> {
          const auto front = toplevels.front();
          return front ? front->output : std::nullopt;
      }),
      applications(toplevels, ApplicationNames(dataFolders(), preferredLocales()), postedKeys) {
    keyThread.start();
    display.onClick = [this] { held.abandon(); };
}

void WaylandHost::bringForward(QWindow& window) {
    window.raise();
    window.requestActivate();
}

void WaylandHost::leaveSession() {
    pasteboard.reset();
    keyThread.stop();
}

} // namespace platform::desktop
