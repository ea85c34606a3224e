#include "Platform/Desktop/Windows/NativeButton.h"

#include "Platform/Desktop/Painting/ColorOf.h"
#include "Platform/Desktop/Painting/SetText.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>

namespace platform::desktop {

NativeButton::NativeButton(const std::shared_ptr<Button>& button, QWidget& window)
    : QPushButton(QString::fromStdString(button->title()).replace('&', "&&"), &window), model(button) {
    // What Return presses is for the window to say.
    setAutoDefault(false);
    connect(this, &QPushButton::clicked, this, [this] {
        if (const auto pressed = model.lock())
            pressed->performClick();
    });
}

QImage NativeButton::picture(const ButtonLook& look, const QSize& pixels, double scale) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!look.isBordered) {
        paintLink(painter, look);
        return image;
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    option.features.setFlag(QStyleOptionButton::DefaultButton, look.isDefault);
    style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
    return image;
}

void NativeButton::paintLink(QPainter& painter, const ButtonLook& look) const {
    auto font = fontFor(look.font);
    font.setUnderline(underMouse());
    painter.setFont(font);
    painter.setPen(colorOf(look.tint));
    painter.drawText(rect(), Qt::AlignCenter, QString::fromStdString(look.title));
    if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange))
        return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

// Return is the window's, wherever the keyboard is.
void NativeButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->ignore();
    else
        QPushButton::keyPressEvent(event);
}

} // namespace platform::desktop
