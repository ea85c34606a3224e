#include "Platform/Desktop/Tray/DesktopStatusItem.h"

#include "Platform/Desktop/Painting/SymbolDrawing.h"
#include "Platform/Desktop/Tray/PanelColor.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace platform::desktop {

DesktopStatusItem::DesktopStatusItem(DesktopPanel& desktopPanel, const Bundle& drawings,
                                     NativeMenu::Command command)
    : panel(desktopPanel), bundle(drawings), menu(std::move(command)), tray(panel, [this] { appear(); }) {
    using namespace std::chrono_literals;
    secondLook.setSingleShot(true);
    secondLook.setInterval(400ms);
    QObject::connect(&secondLook, &QTimer::timeout, [this] { draw(); });
    nextTry.setSingleShot(true);
    nextTry.setInterval(50ms);
    QObject::connect(&nextTry, &QTimer::timeout, [this] { tryToOpen(); });
    appear();
}

void DesktopStatusItem::setImage(const Symbol& shown) {
    symbol = shown;
    draw();
}

void DesktopStatusItem::performClick() {
    using namespace std::chrono_literals;
    patience.setRemainingTime(2s);
    tryToOpen();
}

void DesktopStatusItem::appear() {
    if (!tray.isThere())
        return;
    // Where it is another tray than before, that one is dark or light in its own way.
    secondLook.start();
    if (icon)
        return;
    icon = std::make_unique<QSystemTrayIcon>();
    icon->setContextMenu(&menu);
    QObject::connect(icon.get(), &QSystemTrayIcon::activated,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         // The other button opens the menu by itself.
                         if (reason == QSystemTrayIcon::Trigger)
                             openMenu(true);
                     });
    draw();
    icon->show();
}

void DesktopStatusItem::draw() {
    if (!icon)
        return;
    const auto color = colorOnPanel(panel, icon->geometry());
    icon->setIcon(SymbolDrawing(bundle, symbol.name, color).icon());
    icon->setToolTip(QString::fromStdString(symbol.accessibilityDescription));
}

void DesktopStatusItem::tryToOpen() {
    if (menu.isVisible())
        return;
    // Without the keyboard and the mouse, nothing would close it.
    if (panel.isInputFree())
        openMenu(false);
    else if (!patience.hasExpired())
        nextTry.start();
}

void DesktopStatusItem::openMenu(bool isClicked) {
    menu.popup(placeForMenu(isClicked));
}

QPoint DesktopStatusItem::placeForMenu(bool isClicked) const {
    auto place = icon ? icon->geometry() : QRect();
    if (place.isEmpty() && icon && !isClicked)
        place = panel.end();
    const auto* screen = QGuiApplication::screenAt(place.center());
    if (place.isEmpty() || !screen)
        return QCursor::pos();
    // From the edge that the tray is at.
    if (place.center().y() < screen->geometry().center().y())
        return place.bottomLeft() + QPoint(0, 1);
    return place.topLeft() - QPoint(0, menu.sizeHint().height());
}

} // namespace platform::desktop
