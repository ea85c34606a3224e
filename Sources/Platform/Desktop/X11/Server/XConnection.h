#pragma once

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace platform::desktop {

struct FreeMemory {
    void operator()(void* memory) const noexcept { std::free(memory); }
};

// What XCB hands out to be freed: replies, errors and events.
template <typename T>
using XOwned = std::unique_ptr<T, FreeMemory>;

// There is no X display to connect to; says so in a sentence for the user.
class DisplayError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A property of a window, as it was read.
struct XProperty {
    xcb_atom_t type = XCB_ATOM_NONE;
    std::uint8_t format = 0;
    std::string bytes;

    // The values of a property of format 32.
    std::vector<std::uint32_t> values() const;
};

// A connection to the X server of $DISPLAY, closed at the end of its life. Any thread.
class XConnection {
public:
    XConnection();

    xcb_connection_t* get() const { return connection.get(); }
    operator xcb_connection_t*() const { return connection.get(); }
    const xcb_screen_t& screen() const { return *defaultScreen; }
    xcb_window_t root() const { return defaultScreen->root; }
    int screenNumber() const { return number; }

    // The reply to a request; nothing when the server answered with an error or the connection broke:
    // x.reply(xcb_query_tree_reply, xcb_query_tree(x, window)).
    template <typename Reply, typename Cookie>
    XOwned<Reply> reply(Reply* (*wait)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                        Cookie cookie) const {
        xcb_generic_error_t* error = nullptr;
        XOwned<Reply> answer(wait(get(), cookie, &error));
        XOwned<xcb_generic_error_t> freed(error);
        return answer;
    }

    // The error code that a checked request was answered with, 0 if it was carried out.
    std::uint8_t errorOf(xcb_void_cookie_t checkedRequest) const;

    // The atom of `name`, asked for once.
    xcb_atom_t atom(const std::string& name) const;
    std::string nameOf(xcb_atom_t atom) const;

    // The whole property, nothing if the window or the property is missing. `erase` deletes it once read.
    std::optional<XProperty> property(xcb_window_t window, xcb_atom_t name, bool erase = false) const;

    // The first value of a property of format 32.
    std::optional<std::uint32_t> propertyValue(xcb_window_t window, const std::string& name) const;

    void setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type, std::string_view bytes) const;
    void setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                     std::span<const std::uint32_t> values) const;

    // A window that is never shown, to own selections, carry properties and receive messages. Freed by the
    // server when the connection closes.
    xcb_window_t makeHiddenWindow(std::uint32_t eventMask = 0) const;

    void flush() const { xcb_flush(get()); }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* opened) const noexcept { xcb_disconnect(opened); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> connection;
    const xcb_screen_t* defaultScreen = nullptr;
    int number = 0;
    mutable std::mutex mutex;
    mutable std::map<std::string, xcb_atom_t> atoms;
};

// Ends the program with one sentence on standard error and status 1: nothing goes on without a display.
// Nothing is torn down, since what would be torn down waits for the server. Any thread.
[[noreturn]] void endForLostDisplay();

} // namespace platform::desktop
