#include "Platform/Desktop/X11/Display/KeyboardNoticeFilter.h"

#include <string_view>

#include <QCoreApplication>
#include <QGuiApplication>

namespace platform::desktop {
namespace {

// What the extension's events tell of: the header that names these is no C++.
constexpr std::uint8_t newKeyboard = 0;
constexpr std::uint8_t newMap = 1;

} // namespace

KeyboardNoticeFilter::KeyboardNoticeFilter(const XConnection& display) {
    constexpr std::string_view extension = "XKEYBOARD";
    auto answer = display.reply(xcb_query_extension_reply,
                                xcb_query_extension(display, extension.size(), extension.data()));
    if (!answer || !answer->present)
        return;
    keyboardEvent = answer->first_event;
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool KeyboardNoticeFilter::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t" || QGuiApplication::focusWindow())
        return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    return (event.response_type & 0x7F) == keyboardEvent
           && (event.pad0 == newKeyboard || event.pad0 == newMap);
}

} // namespace platform::desktop
