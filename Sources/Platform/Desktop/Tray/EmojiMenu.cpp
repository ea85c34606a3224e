#include "Platform/Desktop/Tray/EmojiMenu.h"

#include "Platform/Desktop/Painting/EmojiRanges.h"

#include <QStyleOptionMenuItem>

namespace platform::desktop {

void EmojiMenu::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const {
    QMenu::initStyleOption(option, action);
    if (emojiRanges(option->text).empty())
        return;
    option->font.setFamilies(QStringList("emoji") + option->font.families());
    // The emoji's own space is as wide as they are.
    constexpr QChar thirdOfAnEm = u'\u2004';
    option->text.replace(u' ', thirdOfAnEm);
}

} // namespace platform::desktop
