#pragma once

#include "Platform/Desktop/Tray/EmojiMenu.h"
#include "Platform/Kit/Menu.h"

namespace platform::desktop {

// A menu of the desktop's that shows one of the layer's. That may be changed for another one at any time:
// while the menu is open, and by what one of its own items does. Main thread.
class NativeMenu : public EmojiMenu {
public:
    // Told the commands of items that have no action.
    using Command = std::function<void(const std::string&)>;

    explicit NativeMenu(Command command);

    // Of several changes in a row, the last one is carried out when the event loop goes on.
    void change(std::shared_ptr<const Menu> menu);

protected:
    // A key equivalent chooses its item also from within a submenu.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void carryOut();
    void fill(QMenu& native, const Menu& menu);
    void fill(QAction& native, const MenuItem& item);
    void choose(const std::shared_ptr<const MenuItem>& item);

    const Command perform;
    std::shared_ptr<const Menu> shown;
    std::shared_ptr<const Menu> next;
};

} // namespace platform::desktop
