#include "Core/HotkeyListener.h"

#include "Core/Logger.h"
#include "Platform/Host.h"

namespace lumarin {

using platform::EventType;
using platform::Host;
using platform::KeyEvent;

void HotkeyListener::start() {
    LumLog::log("[Hotkey] Starting CGEvent Tap (HID level)...");
    eventTap = Host::current().keyboard().createEventTap(
        maskOf(EventType::flagsChanged),
        [this](EventType type, const KeyEvent& event) { return hotkeyCallback(type, event, *this); });
    if (!eventTap) {
        LumLog::log("[Hotkey] Failed to create event tap — check Accessibility permissions");
        return;
    }
    runLoopSource = eventTap->addTo(Host::current().mainRunLoop());
    eventTap->enable();
    LumLog::log("[Hotkey] Ready. Hold Fn to translate, release to confirm.");
}

std::optional<KeyEvent> HotkeyListener::hotkeyCallback(EventType type, const KeyEvent& event,
                                                       HotkeyListener& listener) {
    if (type >= EventType::tapDisabledByTimeout) {
        if (listener.eventTap)
            listener.eventTap->enable();
        return event;
    }
    return listener.handle(event);
}

std::optional<KeyEvent> HotkeyListener::handle(const KeyEvent& event) {
    bool isDown = (event.flags & platform::flag::secondaryFn) != 0;
    if (event.keyCode != platform::key::function || isDown == fnIsDown)
        return event;
    fnIsDown = isDown;
    LumLog::log(isDown ? "[Hotkey] Fn DOWN (consumed)" : "[Hotkey] Fn UP (consumed)");
    if (const auto& report = isDown ? onFnDown : onFnUp)
        report();
    return std::nullopt;
}

} // namespace lumarin
