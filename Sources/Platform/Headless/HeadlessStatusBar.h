#pragma once

#include "Platform/Kit/StatusItem.h"

namespace platform::headless {

// A status bar that remembers what its one item shows.
class HeadlessStatusBar : public StatusBar {
public:
    Symbol shown;
    std::shared_ptr<const Menu> menu;
    int clicks = 0;
    bool isThere = true;

    std::unique_ptr<StatusItem> makeStatusItem() override { return std::make_unique<Item>(*this); }

private:
    class Item : public StatusItem {
    public:
        explicit Item(HeadlessStatusBar& owner) : bar(owner) {}
        ~Item() override {
            bar.shown = {};
            bar.menu = nullptr;
        }
        void setImage(const Symbol& symbol) override { bar.shown = symbol; }
        void setMenu(std::shared_ptr<const Menu> menu) override { bar.menu = std::move(menu); }
        void performClick() override { ++bar.clicks; }
        bool isVisible() const override { return bar.isThere; }

    private:
        HeadlessStatusBar& bar;
    };
};

} // namespace platform::headless
