#include "Platform/Desktop/DesktopStatusBar.h"

#include <QIcon>
#include <QSystemTrayIcon>

namespace platform::desktop {

namespace {

class TrayItem : public StatusItem {
public:
    explicit TrayItem(const Bundle& drawings) : bundle(drawings) {}

    void setImage(const Symbol& symbol) override {
        auto drawing = bundle.path() / "Symbols" / (symbol.name + ".svg");
        icon.setIcon(QIcon(QString::fromStdString(drawing.string())));
        icon.setToolTip(QString::fromStdString(symbol.accessibilityDescription));
        icon.show();
    }

private:
    const Bundle& bundle;
    QSystemTrayIcon icon;
};

} // namespace

std::unique_ptr<StatusItem> DesktopStatusBar::makeStatusItem() {
    return std::make_unique<TrayItem>(bundle);
}

} // namespace platform::desktop
