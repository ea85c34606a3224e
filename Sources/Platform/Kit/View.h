#pragma once

#include "Platform/Kit/Layer.h"

namespace platform {

// A rectangle of a window that draws itself into a layer of its own, which is there from the start; the layer
// may have other sublayers than those of the subviews, in the order they were added in. A view owns its
// subviews. Its own changes show at once, whatever the transaction; those by its animator move. Main thread.
class View {
public:
    explicit View(const Rect& frame = {});
    virtual ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    Rect frame() const { return layer()->frame(); }
    void setFrame(const Rect& frame);
    Rect bounds() const { return layer()->bounds(); }
    double alphaValue() const { return layer()->opacity(); }
    void setAlphaValue(double alpha);

    const std::shared_ptr<Layer>& layer() const { return backing; }

    // On top of all that the view and its layer hold. It leaves the superview it was in.
    void addSubview(std::shared_ptr<View> subview);
    void removeFromSuperview();
    View* superview() const { return parent; }
    const std::vector<std::shared_ptr<View>>& subviews() const { return children; }

    // Makes the same changes over the duration and along the curve of the animation group under way; reads
    // back from the view as done.
    class Animator {
    public:
        explicit Animator(View& target) : view(target) {}
        void setFrame(const Rect& frame) const;
        void setAlphaValue(double alpha) const;

    private:
        View& view;
    };
    Animator animator() { return Animator(*this); }

    // The views of one kind in the tree below, in their order, but for what is transparent: that takes no
    // part in what a person does.
    template <typename Kind, typename Visit>
    void forEach(const Visit& visit) const {
        for (const auto& child : children) {
            if (child->alphaValue() == 0)
                continue;
            if (auto kind = std::dynamic_pointer_cast<Kind>(child))
                visit(kind);
            child->template forEach<Kind>(visit);
        }
    }

    void setNeedsDisplay() { backing->setNeedsDisplay(); }

protected:
    // What there is to paint besides the layer's properties, in bounds that may be on their way to the
    // view's.
    virtual void draw(Drawing&, const Rect& /*bounds*/) const {}

private:
    class BackingLayer;

    std::shared_ptr<Layer> backing;
    View* parent = nullptr;
    std::vector<std::shared_ptr<View>> children;
};

} // namespace platform
