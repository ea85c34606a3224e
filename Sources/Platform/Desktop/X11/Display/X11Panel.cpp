#include "Platform/Desktop/X11/Display/X11Panel.h"

#include "Platform/Desktop/X11/Display/PanelEnd.h"
#include "Platform/Desktop/X11/Server/InputGrabs.h"

#include <algorithm>

namespace platform::desktop {

X11Panel::X11Panel(const XConnection& display)
    : x(display), tray(x, "_NET_SYSTEM_TRAY", [this] {
          if (onChange)
              onChange();
      }) {}

// Four colours of three channels each, the one for ordinary icons first.
std::optional<QColor> X11Panel::trayColor() const {
    const auto property = x.property(tray.owner(), x.atom("_NET_SYSTEM_TRAY_COLORS"));
    const auto channels = property ? property->values() : std::vector<std::uint32_t>{};
    if (channels.size() < 3)
        return std::nullopt;
    auto channel = [&](std::size_t index) { return int(std::min(channels[index] >> 8U, 255U)); };
    return QColor(channel(0), channel(1), channel(2));
}

QRect X11Panel::end() const {
    return endOfPanel(x);
}

bool X11Panel::isInputFree() const {
    return desktop::isInputFree(x);
}

} // namespace platform::desktop
