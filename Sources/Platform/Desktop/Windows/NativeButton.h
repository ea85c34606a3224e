#pragma once

#include "Platform/Kit/Button.h"

#include <QPushButton>

namespace platform::desktop {

// The desktop's button for one of a window's: it takes the pointer and the keyboard and is there for
// assistive technology, but leaves it to the window's picture to show it, in its place among the layers. Main
// thread.
class NativeButton : public QPushButton {
public:
    NativeButton(const std::shared_ptr<Button>& button, QWidget& window);

    // Null once it is gone.
    std::shared_ptr<Button> button() const { return model.lock(); }

    // With as many pixels to a point.
    QImage picture(const ButtonLook& look, const QSize& pixels, double scale);

protected:
    void paintEvent(QPaintEvent*) override {}
    void keyPressEvent(QKeyEvent* event) override;

private:
    void paintLink(QPainter& painter, const ButtonLook& look) const;

    const std::weak_ptr<Button> model;
};

} // namespace platform::desktop
