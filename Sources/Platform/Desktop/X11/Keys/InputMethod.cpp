#include "Platform/Desktop/X11/Keys/InputMethod.h"

#include "Platform/Desktop/X11/Server/WindowClass.h"

#include <span>
#include <vector>

namespace platform::desktop {
namespace {

// Window managers have no hand in these windows.
std::vector<xcb_window_t> popupsOn(const XConnection& x) {
    const auto tree = x.reply(xcb_query_tree_reply, xcb_query_tree(x, x.root()));
    if (!tree)
        return {};
    const std::span windows(xcb_query_tree_children(tree.get()),
                            static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    std::vector<xcb_get_window_attributes_cookie_t> questions;
    for (const auto window : windows)
        questions.push_back(xcb_get_window_attributes(x, window));
    std::vector<xcb_window_t> result;
    for (std::size_t number = 0; number < windows.size(); ++number) {
        const auto state = x.reply(xcb_get_window_attributes_reply, questions[number]);
        if (state && state->override_redirect != 0 && state->map_state == XCB_MAP_STATE_VIEWABLE)
            result.push_back(windows[number]);
    }
    return result;
}

} // namespace

bool isComposing(const XConnection& x) {
    for (const auto window : popupsOn(x)) {
        const auto instance = windowClassOf(x, window).instance;
        if (instance.starts_with("fcitx") || instance.starts_with("ibus"))
            return true;
    }
    return false;
}

} // namespace platform::desktop
