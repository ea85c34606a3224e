#pragma once

#include "Platform/Kit/View.h"

namespace platform {

enum class WindowLevel { normal = 0, floating = 3 };

// A window on the screen, with a content view that fills it; it owns the view. Held by std::shared_ptr; it
// goes from the screen at the end of its life. Its own changes show at once, those by its animator move. Main
// thread.
class Window {
public:
    // Several joined by |. A window with a title has the desktop's frame around it, takes the keyboard, and
    // keeps its size.
    enum class StyleMask : unsigned { borderless = 0, titled = 1, closable = 2, nonactivatingPanel = 128 };

    Window(const Rect& contentRect, StyleMask styleMask);
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // What the window server goes by when it puts the window in front.
    const StyleMask styleMask;
    WindowLevel level = WindowLevel::normal;
    bool isOpaque = true;
    bool hasShadow = true;
    bool isMovable = true;

    // In the desktop's frame.
    std::string title;

    // In the screen's coordinates, without the desktop's frame.
    Rect frame() const { return surface->frame(); }
    void setFrame(const Rect& frame);
    void setFrameOrigin(const Point& origin);
    // In the middle of the main screen; nothing changes without one.
    void center();
    double alphaValue() const { return surface->opacity(); }
    void setAlphaValue(double alpha);

    const Color& backgroundColor() const { return surface->backgroundColor(); }
    void setBackgroundColor(const Color& color);

    const std::shared_ptr<View>& contentView() const { return content; }
    void setContentView(std::shared_ptr<View> view);

    // Shows the window in front of the others without activating the program.
    void orderFrontRegardless();
    // The same, and gives it the keyboard.
    void makeKeyAndOrderFront();
    void orderOut();
    // What the desktop's frame closes it by. It may be shown again.
    void close() { orderOut(); }
    bool isVisible() const { return visible; }

    // A key was pressed that nothing in the window took: presses the button it stands for, if there is one.
    bool performKeyEquivalent(std::string_view key);

    // Makes the same changes over the duration and along the curve of the animation group under way; reads
    // back from the window as done. The content view keeps up with the window.
    class Animator {
    public:
        explicit Animator(Window& target) : window(target) {}
        void setFrame(const Rect& frame) const;
        void setAlphaValue(double alpha) const;

    private:
        Window& window;
    };
    Animator animator() { return Animator(*this); }

    // What is shown at a time: a layer with the window's frame on the screen, its alpha as opacity and its
    // background, whose one sublayer is the content view's. See Layer.
    LayerPresentation presentation(Duration time) const { return surface->presentation(time); }
    std::optional<Duration> nextChange(Duration time) const { return surface->nextChange(time); }

private:
    class Surface;

    void resize(const Rect& frame);

    std::shared_ptr<Layer> surface;
    std::shared_ptr<View> content;
    bool visible = false;
};

constexpr Window::StyleMask operator|(Window::StyleMask one, Window::StyleMask other) {
    return static_cast<Window::StyleMask>(static_cast<unsigned>(one) | static_cast<unsigned>(other));
}
constexpr bool contains(Window::StyleMask all, Window::StyleMask one) {
    return (static_cast<unsigned>(all) & static_cast<unsigned>(one)) != 0;
}

} // namespace platform
