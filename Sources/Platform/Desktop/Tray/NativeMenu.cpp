#include "Platform/Desktop/Tray/NativeMenu.h"

#include <QKeyEvent>

namespace platform::desktop {

namespace {

// An ampersand alone would underline the letter behind it.
QString titleOf(const std::string& text) {
    return QString::fromStdString(text).replace('&', "&&");
}

bool doesSomething(const MenuItem& item) {
    return item.action || !item.command.empty() || item.submenu;
}

// The item among those of a menu and its submenus that the keys choose.
QAction* itemFor(const QMenu& menu, const QKeySequence& keys) {
    for (auto* item : menu.actions()) {
        if (item->isEnabled() && !item->shortcut().isEmpty() && item->shortcut() == keys)
            return item;
        if (auto* found = item->menu() ? itemFor(*item->menu(), keys) : nullptr)
            return found;
    }
    return nullptr;
}

} // namespace

NativeMenu::NativeMenu(Command command) : perform(std::move(command)) {
    installEventFilter(this);
    connect(this, &QMenu::aboutToShow, this, &NativeMenu::carryOut);
}

void NativeMenu::change(std::shared_ptr<const Menu> menu) {
    next = std::move(menu);
    QMetaObject::invokeMethod(this, &NativeMenu::carryOut, Qt::QueuedConnection);
}

void NativeMenu::carryOut() {
    if (!next)
        return;
    // Whoever is in one of them at the moment still needs them.
    for (auto* old : actions()) {
        removeAction(old);
        if (auto* submenu = old->menu()) {
            submenu->close();
            submenu->deleteLater();
        }
        old->deleteLater();
    }
    shown = std::exchange(next, nullptr);
    fill(*this, *shown);
}

void NativeMenu::fill(QMenu& native, const Menu& menu) {
    for (const auto& item : menu.items) {
        auto* action = new QAction(titleOf(item.title), &native);
        fill(*action, item);
        native.addAction(action);
    }
}

void NativeMenu::fill(QAction& native, const MenuItem& item) {
    native.setSeparator(item.isSeparator);
    native.setEnabled(item.isEnabled && doesSomething(item));
    // Others would have an empty box in front of them.
    native.setCheckable(item.isChecked);
    native.setChecked(item.isChecked);
    if (!item.keyEquivalent.empty()) {
        native.setShortcut(QKeySequence("Ctrl+" + QString::fromStdString(item.keyEquivalent)));
        native.setShortcutVisibleInContextMenu(true);
    }
    if (item.submenu) {
        auto* submenu = new EmojiMenu(this);
        submenu->installEventFilter(this);
        fill(*submenu, *item.submenu);
        native.setMenu(submenu);
        return;
    }
    // Its menu may have been changed for another one by then.
    connect(&native, &QAction::triggered, this,
            [this, &native, kept = std::shared_ptr<const MenuItem>(shown, &item)] {
                // The mark is the program's to change.
                native.setChecked(kept->isChecked);
                choose(kept);
            });
}

void NativeMenu::choose(const std::shared_ptr<const MenuItem>& item) {
    // Later: what it does may take its time, in an event loop of its own, and change this menu.
    QMetaObject::invokeMethod(
        this,
        [this, item] {
            if (item->action)
                item->action(*item);
            else
                perform(item->command);
        },
        Qt::QueuedConnection);
}

bool NativeMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        if (auto* item = itemFor(*this, static_cast<QKeyEvent*>(event)->keyCombination())) {
            close();
            item->trigger();
            return true;
        }
    }
    return QMenu::eventFilter(watched, event);
}

} // namespace platform::desktop
