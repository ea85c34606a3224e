#pragma once

#include "Platform/Desktop/Painting/MeasuredTexts.h"
#include "Platform/Desktop/Painting/ThemeColors.h"
#include "Platform/Desktop/Windows/ShownWindow.h"
#include "Platform/Desktop/Windows/TitledWindow.h"
#include "Platform/Desktop/X11/Display/Compositor.h"
#include "Platform/Desktop/X11/Display/EventDrain.h"
#include "Platform/Desktop/X11/Display/Monitors.h"
#include "Platform/Desktop/X11/Display/StackingWatch.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Kit/WindowServer.h"

#include <map>

#include <QTimer>

namespace platform::desktop {

// Windows on an X display: those with a title as the desktop has them, the others above all, drawn sixty
// times a second while they move and not at all while they don't. Main thread, while Qt's application object
// lives.
class DesktopWindowServer : public WindowServer {
public:
    // The drawings in windows are the bundle's.
    DesktopWindowServer(const RunLoop& clock, const Bundle& bundle);

    std::optional<Screen> mainScreen() override;
    void orderFront(Window& window) override;
    void orderOut(Window& window) override;
    void makeKey(Window& window) override;
    void setNeedsDisplay(Window& window) override;
    Size measure(std::string_view text, const Font& font) override { return texts.sizeOf(text, font); }
    Color color(SystemColor name) override { return themeColor(name); }

private:
    // A window may be ordered out by what it is working off itself.
    struct Later {
        void operator()(TitledWindow* window) const {
            window->hide();
            window->deleteLater();
        }
    };

    void drawAllAnew();
    void requestFrame(ShownWindow& window);
    void scheduleFrame();
    void drawFrame();
    const Monitor* monitorOf(const Window& window) const;
    PixelGrid gridFor(const Window& window) const;

    const RunLoop& clock;
    const Bundle& drawings;
    XConnection x;
    const EventDrain drain{x};
    Compositor compositor;
    StackingWatch stacking;
    Backdrop backdrop = Backdrop::none;
    // As they were when they were last asked for.
    std::vector<Monitor> monitors;
    std::map<Window*, ShownWindow> shown;
    // Those in a frame of the window manager's.
    std::map<Window*, std::unique_ptr<TitledWindow, Later>> titled;
    QTimer timer;
    // When the last frame was meant to be.
    Duration lastFrame{};
    MeasuredTexts texts;
};

} // namespace platform::desktop
