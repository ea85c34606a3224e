#pragma once

#include "Platform/Desktop/Painting/MeasuredTexts.h"
#include "Platform/Desktop/Painting/ThemeColors.h"
#include "Platform/Desktop/Windows/Display.h"
#include "Platform/Desktop/Windows/ShownWindow.h"
#include "Platform/Desktop/Windows/TitledWindow.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Kit/WindowServer.h"

#include <map>

#include <QTimer>

namespace platform::desktop {

// The windows of a desktop: those with a title as the desktop has them, the others above all, drawn sixty
// times a second while they move and not at all while they don't. Main thread, while Qt's application object
// lives.
class DesktopWindowServer : public WindowServer {
public:
    // The drawings in windows are the bundle's.
    DesktopWindowServer(Display& display, const RunLoop& clock, const Bundle& bundle);
    ~DesktopWindowServer() override;
    DesktopWindowServer(const DesktopWindowServer&) = delete;
    DesktopWindowServer& operator=(const DesktopWindowServer&) = delete;

    // That of a window shown above all, for as long as there is one: it is not to jump from screen to screen.
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

    void displayChanged();
    void leaveMonitorsThatWent(const std::vector<Monitor>& before);
    void requestFrame(ShownWindow& window);
    void scheduleFrame();
    void drawFrame();
    const Monitor* monitorOf(const Window& window) const;
    PixelGrid gridFor(const Window& window) const;

    Display& display;
    const RunLoop& clock;
    const Bundle& drawings;
    Backdrop backdrop = Backdrop::none;
    // What is free of bars on them is of when the main screen was last looked for.
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
