#pragma once

#include "Platform/Desktop/Clipboard/SelectionContent.h"
#include "Platform/Desktop/X11/Server/XConnection.h"

#include <chrono>
#include <functional>

namespace tests {

using Event = platform::desktop::XOwned<xcb_generic_event_t>;

template <typename T>
const T& as(const Event& event) {
    return reinterpret_cast<const T&>(*event);
}

inline int kindOf(const Event& event) {
    return event->response_type & 0x7F;
}

// Asks the owner of a selection and takes the answer as it comes, in one go or in pieces.
std::optional<platform::desktop::SelectionForm> fetchFrom(const platform::desktop::XConnection& x,
                                                          xcb_window_t window, const std::string& target,
                                                          std::chrono::milliseconds pause,
                                                          const std::function<void(Event)>& otherwise);

// The test's own eyes on the clipboard.
class SelectionProbe {
public:
    SelectionProbe();

    // What the clipboard's owner answers, as any program would see it; pieces are taken with a pause before
    // each.
    std::optional<platform::desktop::SelectionForm> fetch(const std::string& target,
                                                          std::chrono::milliseconds pause = {});
    std::vector<std::string> targets();
    xcb_window_t owner();
    // Asks for a target and goes away in the midst of the transfer.
    void fetchAndVanish(const std::string& target);

private:
    platform::desktop::XConnection x;
    xcb_window_t window;
};

} // namespace tests
