#include "Desktop/X11/Clipboard/SelectionProbe.h"

#include <thread>

#include <unistd.h>

namespace tests {

using namespace platform::desktop;

std::optional<SelectionForm> fetchFrom(const XConnection& x, xcb_window_t window, const std::string& target,
                                       std::chrono::milliseconds pause,
                                       const std::function<void(Event)>& otherwise) {
    auto property = x.atom("TEST_FETCH");
    xcb_convert_selection(x, window, x.atom("CLIPBOARD"), x.atom(target), property, XCB_CURRENT_TIME);
    x.flush();
    auto next = [&](auto wanted) {
        while (Event event{xcb_wait_for_event(x)}) {
            if (wanted(event))
                return event;
            otherwise(std::move(event));
        }
        _exit(1);
    };
    auto notice = next([&](const Event& event) {
        return kindOf(event) == XCB_SELECTION_NOTIFY
               && as<xcb_selection_notify_event_t>(event).requestor == window;
    });
    if (as<xcb_selection_notify_event_t>(notice).property == XCB_ATOM_NONE)
        return std::nullopt;
    auto value = x.property(window, property, true);
    if (!value)
        return std::nullopt;
    if (value->type == x.atom("INCR")) {
        std::optional<XProperty> whole;
        while (true) {
            next([&](const Event& event) {
                if (kindOf(event) != XCB_PROPERTY_NOTIFY)
                    return false;
                const auto& change = as<xcb_property_notify_event_t>(event);
                return change.atom == property && change.state == XCB_PROPERTY_NEW_VALUE;
            });
            std::this_thread::sleep_for(pause);
            auto piece = x.property(window, property, true);
            if (!piece)
                continue;
            x.flush();
            if (!whole)
                whole = piece;
            else
                whole->bytes += piece->bytes;
            if (piece->bytes.empty())
                break;
        }
        value = std::move(whole);
    }
    return SelectionForm{target, x.nameOf(value->type), value->format, value->bytes};
}

SelectionProbe::SelectionProbe() : window(x.makeHiddenWindow(XCB_EVENT_MASK_PROPERTY_CHANGE)) {}

std::optional<SelectionForm> SelectionProbe::fetch(const std::string& target,
                                                   std::chrono::milliseconds pause) {
    return fetchFrom(x, window, target, pause, [](const Event&) {});
}

std::vector<std::string> SelectionProbe::targets() {
    std::vector<std::string> names;
    if (auto list = fetch("TARGETS"))
        for (auto target : XProperty{XCB_ATOM_ATOM, 32, list->bytes}.values())
            names.push_back(x.nameOf(target));
    return names;
}

xcb_window_t SelectionProbe::owner() {
    auto answer = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, x.atom("CLIPBOARD")));
    return answer ? answer->owner : 0;
}

void SelectionProbe::fetchAndVanish(const std::string& target) {
    XConnection other;
    auto requestor = other.makeHiddenWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_convert_selection(other, requestor, other.atom("CLIPBOARD"), other.atom(target),
                          other.atom("TEST_FETCH"), XCB_CURRENT_TIME);
    other.flush();
    while (Event event{xcb_wait_for_event(other)}) {
        if (kindOf(event) == XCB_SELECTION_NOTIFY)
            return;
    }
}

} // namespace tests
