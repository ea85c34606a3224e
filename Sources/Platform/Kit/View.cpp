#include "Platform/Kit/View.h"

#include "Platform/Kit/AnimationContext.h"
#include "Platform/Kit/Transaction.h"

#include <utility>

namespace platform {

// Others may hold the layer for longer than the view lives.
class View::BackingLayer : public Layer {
public:
    explicit BackingLayer(const View* owner) : view(owner) {}

    const View* view;

private:
    void draw(Drawing& drawing, const Rect& shownBounds) const override {
        if (view)
            view->draw(drawing, shownBounds);
    }
};

View::View(const Rect& frame) : backing(std::make_shared<BackingLayer>(this)) {
    setFrame(frame);
}

View::~View() {
    static_cast<BackingLayer&>(*backing).view = nullptr;
    for (const auto& child : children)
        child->parent = nullptr;
}

void View::setFrame(const Rect& frame) {
    const auto transaction = Transaction::withActionsDisabled();
    backing->setFrame(frame);
}

void View::setAlphaValue(double alpha) {
    const auto transaction = Transaction::withActionsDisabled();
    backing->setOpacity(static_cast<float>(alpha));
}

void View::addSubview(std::shared_ptr<View> subview) {
    subview->removeFromSuperview();
    subview->parent = this;
    backing->addSublayer(subview->layer());
    children.push_back(std::move(subview));
}

void View::removeFromSuperview() {
    if (!parent)
        return;
    backing->removeFromSuperlayer();
    auto& former = *std::exchange(parent, nullptr);
    // Last: it may be the end of this view.
    std::erase_if(former.children, [this](const auto& child) { return child.get() == this; });
}

void View::Animator::setFrame(const Rect& frame) const {
    AnimationContext::animate([&] { view.layer()->setFrame(frame); });
}

void View::Animator::setAlphaValue(double alpha) const {
    AnimationContext::animate([&] { view.layer()->setOpacity(static_cast<float>(alpha)); });
}

} // namespace platform
