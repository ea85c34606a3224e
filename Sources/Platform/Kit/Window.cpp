#include "Platform/Kit/Window.h"

#include "Platform/Host.h"
#include "Platform/Kit/AnimationContext.h"
#include "Platform/Kit/Button.h"
#include "Platform/Kit/Screen.h"
#include "Platform/Kit/Transaction.h"

#include <utility>

namespace platform {

// The window's frame and alpha are those of a layer on the screen, so that they move like any layer's.
class Window::Surface : public Layer {
public:
    explicit Surface(Window& owner) : window(owner) {}

    void setNeedsDisplay() override {
        if (window.visible)
            Host::current().windowServer().setNeedsDisplay(window);
    }

private:
    Window& window;
};

Window::Window(const Rect& contentRect, StyleMask mask)
    : styleMask(mask), surface(std::make_shared<Surface>(*this)) {
    setFrame(contentRect);
    setBackgroundColor(Color::system(SystemColor::windowBackground));
    setContentView(std::make_shared<View>());
}

Window::~Window() {
    orderOut();
}

void Window::setFrame(const Rect& frame) {
    const auto transaction = Transaction::withActionsDisabled();
    resize(frame);
}

void Window::setFrameOrigin(const Point& origin) {
    setFrame({origin.x, origin.y, frame().width, frame().height});
}

void Window::center() {
    if (const auto screen = Screen::mainScreen())
        setFrameOrigin({screen->visibleFrame.midX() - frame().width / 2,
                        screen->visibleFrame.midY() - frame().height / 2});
}

void Window::setAlphaValue(double alpha) {
    const auto transaction = Transaction::withActionsDisabled();
    surface->setOpacity(static_cast<float>(alpha));
}

void Window::setBackgroundColor(const Color& color) {
    const auto transaction = Transaction::withActionsDisabled();
    surface->setBackgroundColor(color);
}

void Window::setContentView(std::shared_ptr<View> view) {
    if (content)
        content->layer()->removeFromSuperlayer();
    content = std::move(view);
    content->setFrame(surface->bounds());
    surface->addSublayer(content->layer());
}

void Window::orderFrontRegardless() {
    visible = true;
    Host::current().windowServer().orderFront(*this);
}

void Window::makeKeyAndOrderFront() {
    orderFrontRegardless();
    Host::current().windowServer().makeKey(*this);
}

void Window::orderOut() {
    if (std::exchange(visible, false))
        Host::current().windowServer().orderOut(*this);
}

bool Window::performKeyEquivalent(std::string_view key) {
    std::shared_ptr<Button> pressed;
    content->forEach<Button>([&](const std::shared_ptr<Button>& button) {
        if (!pressed && button->isEnabled() && button->keyEquivalent() == key)
            pressed = button;
    });
    if (pressed)
        pressed->performClick();
    return pressed != nullptr;
}

void Window::resize(const Rect& frame) {
    surface->setFrame(frame);
    if (content)
        content->layer()->setFrame(surface->bounds());
}

void Window::Animator::setFrame(const Rect& frame) const {
    AnimationContext::animate([&] { window.resize(frame); });
}

void Window::Animator::setAlphaValue(double alpha) const {
    AnimationContext::animate([&] { window.surface->setOpacity(static_cast<float>(alpha)); });
}

} // namespace platform
