#include "Platform/Desktop/X11/Server/XConnection.h"

#include <algorithm>
#include <cstring>

#include <unistd.h>

namespace platform::desktop {

std::vector<std::uint32_t> XProperty::values() const {
    std::vector<std::uint32_t> result;
    if (format == 32) {
        result.resize(bytes.size() / sizeof(std::uint32_t));
        std::memcpy(result.data(), bytes.data(), result.size() * sizeof(std::uint32_t));
    }
    return result;
}

XConnection::XConnection() {
    connection.reset(xcb_connect(nullptr, &number));
    if (xcb_connection_has_error(get())) {
        const char* display = std::getenv("DISPLAY");
        throw DisplayError(display && *display
                               ? "The X display \"" + std::string(display) + "\" could not be opened."
                               : "There is no X display: the variable DISPLAY is not set.");
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(get()));
    for (int before = number; before > 0; --before)
        xcb_screen_next(&screens);
    defaultScreen = screens.data;
}

std::uint8_t XConnection::errorOf(xcb_void_cookie_t checkedRequest) const {
    XOwned<xcb_generic_error_t> error(xcb_request_check(get(), checkedRequest));
    return error ? error->error_code : std::uint8_t{0};
}

xcb_atom_t XConnection::atom(const std::string& name) const {
    std::lock_guard lock(mutex);
    auto known = atoms.find(name);
    if (known == atoms.end()) {
        auto answer = reply(xcb_intern_atom_reply,
                            xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data()));
        if (!answer)
            return XCB_ATOM_NONE;
        known = atoms.emplace(name, answer->atom).first;
    }
    return known->second;
}

std::string XConnection::nameOf(xcb_atom_t atom) const {
    auto answer = reply(xcb_get_atom_name_reply, xcb_get_atom_name(get(), atom));
    if (!answer)
        return {};
    return {xcb_get_atom_name_name(answer.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(answer.get()))};
}

std::optional<XProperty> XConnection::property(xcb_window_t window, xcb_atom_t name, bool erase) const {
    // The most that is asked for at once, in units of four bytes. The server deletes with the last piece.
    constexpr std::uint32_t piece = 1U << 18U;
    XProperty result;
    std::uint32_t offset = 0;
    while (true) {
        auto answer =
            reply(xcb_get_property_reply,
                  xcb_get_property(get(), erase, window, name, XCB_GET_PROPERTY_TYPE_ANY, offset, piece));
        if (!answer || answer->type == XCB_ATOM_NONE)
            return std::nullopt;
        result.type = answer->type;
        result.format = answer->format;
        result.bytes.append(static_cast<const char*>(xcb_get_property_value(answer.get())),
                            static_cast<std::size_t>(xcb_get_property_value_length(answer.get())));
        if (answer->bytes_after == 0)
            return result;
        offset += piece;
    }
}

std::optional<std::uint32_t> XConnection::propertyValue(xcb_window_t window, const std::string& name) const {
    auto found = property(window, atom(name));
    if (!found)
        return std::nullopt;
    auto values = found->values();
    return values.empty() ? std::nullopt : std::optional(values.front());
}

void XConnection::setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                              std::string_view bytes) const {
    xcb_change_property(get(), XCB_PROP_MODE_REPLACE, window, name, type, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.data());
}

void XConnection::setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                              std::span<const std::uint32_t> values) const {
    xcb_change_property(get(), XCB_PROP_MODE_REPLACE, window, name, type, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
}

xcb_window_t XConnection::makeHiddenWindow(std::uint32_t eventMask) const {
    auto window = xcb_generate_id(get());
    xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    return window;
}

void endForLostDisplay() {
    static constexpr std::string_view sentence = "Lumarin: The connection to the X display was lost.\n";
    [[maybe_unused]] auto written = write(STDERR_FILENO, sentence.data(), sentence.size());
    _exit(1);
}

} // namespace platform::desktop
