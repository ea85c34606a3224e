#pragma once

#include "Platform/Desktop/Pictures/WindowPicture.h"
#include "Platform/Desktop/Windows/Display.h"
#include "Platform/Foundation/Executor.h"

namespace platform {
class Window;
}

namespace platform::desktop {

// A window that is on the display. Main thread.
class ShownWindow {
public:
    ShownWindow(Display& display, Window& window, double scale);

    // Shows the window as it looks at the time, on the screen with that grid.
    void draw(Duration time, const PixelGrid& grid, Backdrop backdrop);

    // When to draw it; nothing while it is at rest.
    std::optional<Duration> due;

private:
    std::vector<QRect> spans(int density) const;

    Window& window;
    const std::unique_ptr<Surface> surface;
    WindowPicture picture;
    double opacity = 0;
};

} // namespace platform::desktop
