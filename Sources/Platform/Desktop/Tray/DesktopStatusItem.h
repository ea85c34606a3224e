#pragma once

#include "Platform/Desktop/Tray/NativeMenu.h"
#include "Platform/Desktop/Tray/TrayWatch.h"
#include "Platform/Foundation/Bundle.h"
#include "Platform/Kit/StatusItem.h"

#include <memory>

#include <QDeadlineTimer>
#include <QSystemTrayIcon>

namespace platform::desktop {

// An icon in the desktop's tray, with a menu. Main thread.
class DesktopStatusItem : public StatusItem {
public:
    DesktopStatusItem(DesktopPanel& panel, const Bundle& drawings, NativeMenu::Command command);

    void setImage(const Symbol& shown) override;
    void setMenu(std::shared_ptr<const Menu> changed) override { menu.change(std::move(changed)); }
    void performClick() override;
    bool isVisible() const override { return icon != nullptr; }

private:
    void appear();
    void draw();
    void tryToOpen();
    void openMenu(bool isClicked);
    QPoint placeForMenu(bool isClicked) const;

    DesktopPanel& panel;
    const Bundle& bundle;
    Symbol symbol;
    NativeMenu menu;
    TrayWatch tray;
    // Looks at the panel once it shows the icon.
    QTimer secondLook;
    // Of a click that is nobody's, while others have the keyboard or the mouse.
    QTimer nextTry;
    QDeadlineTimer patience;
    // Made when there is a tray: it keeps to the kind of tray that it finds first.
    std::unique_ptr<QSystemTrayIcon> icon;
};

} // namespace platform::desktop
