#pragma once

#include "Platform/Desktop/Wayland/Display/CompositorReader.h"
#include "Platform/Desktop/Wayland/Display/LayerSurface.h"
#include "Platform/Desktop/Wayland/Display/Outputs.h"
#include "Platform/Desktop/Windows/Display.h"

namespace platform::desktop {

// The outputs of a Wayland compositor, on a connection of its own. Main thread.
class WaylandDisplay : public Display {
public:
    // `mainOutput` says which one has the focus, by its number, where that is known. Throws WaylandError.
    explicit WaylandDisplay(std::function<std::optional<std::uint32_t>()> mainOutput);

    // Called when a surface is clicked or touched.
    std::function<void()> onClick;

    std::vector<Monitor> monitors() override;
    const Monitor& mainMonitor(const std::vector<Monitor>& monitors) override;
    Backdrop backdrop() override { return Backdrop::plain; }
    std::unique_ptr<Surface> makeSurface(int margin) override;

private:
    Monitor monitorOf(const Output& output) const;
    std::optional<LayerSurface::Ground> groundAt(const QRect& place) const;
    void hearOfClicks();
    void clicked() const;

    static const wl_pointer_listener pointerListener;
    static const wl_touch_listener touchListener;

    const std::function<std::optional<std::uint32_t>()> focusedOutput;
    WaylandConnection wayland;
    const LayerShell shell{wayland};
    Outputs outputs;
    // The one last said to have the focus.
    std::optional<std::uint32_t> mainOutput;
    WaylandOwned<wl_seat> seat;
    WaylandOwned<wl_pointer> pointer;
    WaylandOwned<wl_touch> touch;
    const CompositorReader reader{wayland};
};

} // namespace platform::desktop
