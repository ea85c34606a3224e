#pragma once

#include <any>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform {

class Menu;

// A line of a menu. What it does is either `action`, or `command`, the name of what the first responder is to
// do: "copy:". Main thread.
struct MenuItem {
    std::string title;
    // With Command; empty for none.
    std::string keyEquivalent;
    std::string command;
    std::function<void(const MenuItem&)> action;
    bool isSeparator = false;
    bool isEnabled = true;
    bool isChecked = false;
    // Whatever the action needs to know.
    std::any representedObject;
    std::shared_ptr<Menu> submenu;
};

struct Menu {
    std::string title;
    std::vector<MenuItem> items;
};

} // namespace platform
