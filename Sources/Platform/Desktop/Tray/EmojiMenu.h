#pragma once

#include <QMenu>

namespace platform::desktop {

// A menu with emoji in colour: the interface's fonts often have them in outline only, and only some. Main
// thread.
class EmojiMenu : public QMenu {
public:
    using QMenu::QMenu;

protected:
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;
};

} // namespace platform::desktop
