#pragma once

#include <memory>
#include <string>

namespace platform {

// A drawing of the bundle's by its name, and what it is for those who cannot see it.
struct Symbol {
    std::string name;
    std::string accessibilityDescription;
};

// The program's icon in the desktop's status bar, there for as long as it lives. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    virtual void setImage(const Symbol& symbol) = 0;
};

class StatusBar {
public:
    virtual ~StatusBar() = default;

    virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

} // namespace platform
