#pragma once

#include "Platform/Desktop/Compositor.h"
#include "Platform/Desktop/MeasuredTexts.h"
#include "Platform/Desktop/Monitors.h"
#include "Platform/Desktop/ShownWindow.h"
#include "Platform/Desktop/StackingWatch.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Kit/WindowServer.h"

#include <map>

#include <QTimer>

namespace platform::desktop {

// Windows on an X display, drawn sixty times a second while they move and not at all while they don't. Main
// thread, while Qt's application object lives.
class DesktopWindowServer : public WindowServer {
public:
    explicit DesktopWindowServer(const RunLoop& clock);

    std::optional<Screen> mainScreen() override;
    void orderFront(Window& window) override;
    void orderOut(Window& window) override;
    void setNeedsDisplay(Window& window) override;
    Size measure(std::string_view text, const Font& font) override { return texts.sizeOf(text, font); }

private:
    void drawAllAnew();
    void requestFrame(ShownWindow& window);
    void scheduleFrame();
    void drawFrame();
    PixelGrid gridFor(const Window& window) const;

    const RunLoop& clock;
    XConnection x;
    Compositor compositor;
    StackingWatch stacking;
    Backdrop backdrop = Backdrop::none;
    // As they were when they were last asked for.
    std::vector<Monitor> monitors;
    std::map<Window*, ShownWindow> shown;
    QTimer timer;
    // When the last frame was meant to be.
    Duration lastFrame{};
    MeasuredTexts texts;
};

} // namespace platform::desktop
