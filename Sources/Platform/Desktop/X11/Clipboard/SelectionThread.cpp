#include "Platform/Desktop/X11/Clipboard/SelectionThread.h"

namespace platform::desktop {
namespace {

constexpr auto clockProperty = "LUMARIN_CLOCK";

} // namespace

SelectionThread::SelectionThread()
    : clockWindow(connection.makeHiddenWindow(XCB_EVENT_MASK_PROPERTY_CHANGE)) {}

SelectionThread::~SelectionThread() {
    stop();
}

void SelectionThread::start(std::function<void(const xcb_generic_event_t&)> eventHandler) {
    handler = std::move(eventHandler);
    EventThread::start(*this);
}

Task<xcb_timestamp_t> SelectionThread::serverTime() {
    clockTime = 0;
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, clockWindow, connection.atom(clockProperty),
                        XCB_ATOM_INTEGER, 32, 0, nullptr);
    co_await until([this] { return clockTime != 0; }, std::chrono::seconds(5));
    co_return clockTime;
}

bool SelectionThread::dispatch() {
    bool any = false;
    while (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        any = true;
        auto changed = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY && changed->window == clockWindow)
            clockTime = changed->time;
        else
            handler(*event);
    }
    return any;
}

} // namespace platform::desktop
