#pragma once

#include "Platform/Kit/StatusItem.h"

namespace platform::headless {

// A status bar that remembers what its one item shows.
class HeadlessStatusBar : public StatusBar {
public:
    Symbol shown;

    std::unique_ptr<StatusItem> makeStatusItem() override { return std::make_unique<Item>(*this); }

private:
    class Item : public StatusItem {
    public:
        explicit Item(HeadlessStatusBar& owner) : bar(owner) {}
        ~Item() override { bar.shown = {}; }
        void setImage(const Symbol& symbol) override { bar.shown = symbol; }

    private:
        HeadlessStatusBar& bar;
    };
};

} // namespace platform::headless
