#include "Platform/Desktop/Windows/NativeControls.h"

#include "Platform/Desktop/Painting/ColorOf.h"
#include "Platform/Desktop/Painting/SymbolDrawing.h"
#include "Platform/Kit/TextField.h"

#include <algorithm>

#include <QPainter>

namespace platform::desktop {
namespace {

class UnseenLabel : public QLabel {
public:
    explicit UnseenLabel(QWidget& window) : QLabel(&window) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setTextFormat(Qt::PlainText);
        show();
    }

protected:
    void paintEvent(QPaintEvent*) override {}
};

QRect placeOf(const View& view, const QWidget& window) {
    const auto size = view.frame().size();
    Point origin;
    for (const auto* each = &view; each; each = each->superview()) {
        origin.x += each->frame().x;
        origin.y += each->frame().y;
    }
    return QRectF(origin.x, window.height() - origin.y - size.height, size.width, size.height)
        .toAlignedRect();
}

} // namespace

void NativeControls::adapt(const View& content) {
    adaptButtons(content);
    adaptTexts(content);
    keepFocus();
}

void NativeControls::adaptButtons(const View& content) {
    std::erase_if(buttons, [](NativeButton* button) {
        if (button->button())
            return false;
        button->deleteLater();
        return true;
    });
    std::vector<NativeButton*> present;
    content.forEach<Button>([&](const std::shared_ptr<Button>& button) {
        auto known = std::ranges::find(buttons, button, &NativeButton::button);
        if (known == buttons.end())
            known = buttons.insert(known, new NativeButton(button, widget));
        (*known)->setGeometry(placeOf(*button, widget));
        (*known)->setEnabled(button->isEnabled());
        (*known)->show();
        present.push_back(*known);
    });
    // Those of a page on its way out are still to be painted, but not to be pressed.
    for (auto* button : buttons)
        if (std::ranges::find(present, button) == present.end())
            button->hide();
}

void NativeControls::adaptTexts(const View& content) {
    std::size_t count = 0;
    content.forEach<TextField>([&](const std::shared_ptr<TextField>& field) {
        if (count == texts.size())
            texts.push_back(new UnseenLabel(widget));
        auto& text = *texts[count++];
        text.setText(QString::fromStdString(field->stringValue()));
        text.setGeometry(placeOf(*field, widget));
    });
    for (; texts.size() > count; texts.pop_back())
        texts.back()->deleteLater();
}

void NativeControls::keepFocus() {
    const auto* focused = widget.focusWidget();
    if (focused && focused != &widget && focused->isVisible())
        return;
    const auto main = std::ranges::find_if(buttons, [](const NativeButton* button) {
        const auto model = button->button();
        return button->isVisible() && model && model->keyEquivalent() == "\r";
    });
    if (main != buttons.end())
        (*main)->setFocus(Qt::OtherFocusReason);
}

void NativeControls::paint(QPainter& painter, const ButtonLook& look, const QRectF& place, double scale) {
    const auto known = std::ranges::find_if(
        buttons, [&](const NativeButton* button) { return button->button().get() == look.button; });
    if (known == buttons.end())
        return;
    // On pixels, so that its lines are sharp also while it moves.
    const QRect pixels(place.topLeft().toPoint(), place.size().toSize());
    auto picture = (*known)->picture(look, pixels.size(), scale);
    picture.setDevicePixelRatio(1);
    painter.drawImage(pixels.topLeft(), picture);
}

void NativeControls::paint(QPainter& painter, const SymbolPicture& symbol, const QRectF& place) {
    SymbolDrawing(drawings, symbol.name, colorOf(symbol.color)).paint(painter, place);
}

} // namespace platform::desktop
