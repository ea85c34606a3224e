#pragma once

#include "Platform/Desktop/Pictures/ControlPainter.h"
#include "Platform/Desktop/Windows/NativeButton.h"
#include "Platform/Foundation/Bundle.h"
#include "Platform/Kit/View.h"

#include <QLabel>

namespace platform::desktop {

// The desktop's widgets for the buttons and texts of a window's views. Main thread.
class NativeControls : public ControlPainter {
public:
    NativeControls(QWidget& window, const Bundle& bundle) : widget(window), drawings(bundle) {}

    // Makes the widgets those of the views there are, at the places the views have or are on their way to.
    void adapt(const View& content);

    void paint(QPainter& painter, const ButtonLook& look, const QRectF& place, double scale) override;
    void paint(QPainter& painter, const SymbolPicture& symbol, const QRectF& place) override;

private:
    void adaptButtons(const View& content);
    void adaptTexts(const View& content);
    void keepFocus();

    QWidget& widget;
    const Bundle& drawings;
    std::vector<NativeButton*> buttons;
    // For assistive technology; they show nothing.
    std::vector<QLabel*> texts;
};

} // namespace platform::desktop
