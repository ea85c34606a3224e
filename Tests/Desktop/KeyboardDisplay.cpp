#include "Desktop/KeyboardDisplay.h"

#include <cstring>
#include <ostream>
#include <stdexcept>

namespace platform::desktop {

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error(command + " failed");
}

void PrintTo(const SeenKey& key, std::ostream* output) {
    *output << (key.isPress ? "press " : "release ") << key.code << " in state " << key.state;
}

TestApplication::TestApplication(const std::string& windowClass) : shown(xcb_generate_id(x)) {
    std::uint32_t events =
        XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_create_window(x, XCB_COPY_FROM_PARENT, shown, x.root(), 0, 0, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    auto names = windowClass + '\0' + windowClass + '\0';
    x.setProperty(shown, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, names);
    // A window manager gives a new window the keyboard in its own time; one that just starts may not hear of
    // it.
    bool isManaged = x.propertyValue(x.root(), "_NET_SUPPORTING_WM_CHECK").has_value();
    bool hasFocus = tests::comesTrue([&] {
        xcb_map_window(x, shown);
        if (!isManaged)
            xcb_set_input_focus(x, XCB_INPUT_FOCUS_PARENT, shown, XCB_CURRENT_TIME);
        auto focus = x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x));
        return focus && focus->focus == shown;
    });
    if (!hasFocus)
        throw std::runtime_error("the window never got the keyboard");
}

void TestApplication::setProperty(const std::string& name, const std::string& type,
                                  std::uint32_t value) const {
    x.setProperty(shown, x.atom(name), x.atom(type), std::span(&value, 1));
    x.flush();
}

std::vector<SeenKey> TestApplication::takeKeys() {
    static_cast<void>(x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x)));
    std::vector<SeenKey> result;
    while (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(x)}) {
        auto type = event->response_type & 0x7FU;
        if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
            continue;
        xcb_key_press_event_t key{};
        std::memcpy(&key, event.get(), sizeof key);
        result.push_back({type == XCB_KEY_PRESS, key.detail, key.state});
    }
    return result;
}

} // namespace platform::desktop
