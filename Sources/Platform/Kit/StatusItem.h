#pragma once

#include "Platform/Kit/Menu.h"
#include "Platform/Kit/Symbol.h"

#include <memory>

namespace platform {

// The program's icon in the desktop's status bar, there for as long as it lives. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    virtual void setImage(const Symbol& symbol) = 0;

    // What a click opens. It is not changed any more; another one takes its place, also while it is open.
    virtual void setMenu(std::shared_ptr<const Menu> menu) = 0;

    // Opens the menu, as a click does.
    virtual void performClick() = 0;

    // Whether there is a place to show it in. One that has none yet is shown when there is.
    virtual bool isVisible() const = 0;
};

class StatusBar {
public:
    virtual ~StatusBar() = default;

    virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

} // namespace platform
