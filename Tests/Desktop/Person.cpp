#include "Desktop/Person.h"

#include <ranges>
#include <stdexcept>
#include <string_view>

#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace tests {
namespace {

std::uint8_t physicalDevice(const platform::desktop::XConnection& x) {
    const auto devices =
        x.reply(xcb_input_xi_query_device_reply, xcb_input_xi_query_device(x, XCB_INPUT_DEVICE_ALL));
    auto each = xcb_input_xi_query_device_infos_iterator(devices.get());
    for (; each.rem > 0; xcb_input_xi_device_info_next(&each)) {
        const std::string_view name(xcb_input_xi_device_info_name(each.data), each.data->name_len);
        if (each.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && name.find("XTEST") == name.npos)
            return static_cast<std::uint8_t>(each.data->deviceid);
    }
    throw std::runtime_error("The display has no keyboard");
}

} // namespace

Person::Person(KeyboardKind kind) {
    if (kind == KeyboardKind::ofPrograms)
        return;
    const auto* extension = xcb_get_extension_data(x, &xcb_input_id);
    pressEvent = static_cast<std::uint8_t>(extension->first_event + XCB_INPUT_DEVICE_KEY_PRESS);
    device = physicalDevice(x);
}

void Person::strike(std::initializer_list<int> keys) const {
    for (const int key : keys)
        press(key);
    for (const int key : std::views::reverse(keys))
        release(key);
}

void Person::switchDevice(bool isOn) const {
    const std::uint8_t value = isOn ? 1 : 0;
    xcb_input_xi_change_property(x, device, XCB_PROP_MODE_REPLACE, 8, x.atom("Device Enabled"),
                                 XCB_ATOM_INTEGER, 1, &value);
    static_cast<void>(x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x)));
}

std::vector<int> Person::keysDown() const {
    std::vector<int> result;
    const auto answer = x.reply(xcb_query_keymap_reply, xcb_query_keymap(x));
    for (int code = 0; code < 256; ++code)
        if ((answer->keys[code / 8] >> (code % 8) & 1) != 0)
            result.push_back(code);
    return result;
}

Clock::time_point Person::change(int key, bool isPress) const {
    const auto now = Clock::now();
    const int event = pressEvent + (isPress ? 0 : 1);
    xcb_test_fake_input(x, static_cast<std::uint8_t>(event), static_cast<std::uint8_t>(key), XCB_CURRENT_TIME,
                        XCB_NONE, 0, 0, device);
    static_cast<void>(x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x)));
    return now;
}

} // namespace tests
