#pragma once

#include "Platform/Desktop/Wayland/Server/WaylandOwned.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace platform::desktop {

// There is no compositor to connect to, or it does not offer what is asked for; says so in a sentence.
class WaylandError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A connection to the compositor of $WAYLAND_DISPLAY, closed at the end of its life. One thread.
class WaylandConnection {
public:
    // Throws WaylandError.
    WaylandConnection();
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    wl_display* display() const { return connection.get(); }

    // Whether there is a global of the interface.
    bool offers(const wl_interface& interface) const { return find(interface.name) != nullptr; }

    // The first global of the interface, in at most that version; null where there is none. The caller's.
    template <typename T>
    T* bind(const wl_interface& interface, std::uint32_t version) const {
        const auto* global = find(interface.name);
        return global ? static_cast<T*>(bindGlobal(*global, interface, version)) : nullptr;
    }

    // Calls for each global of the interface, now and as they come, with its number for `bindNumbered`, and
    // as they go.
    void watch(const wl_interface& interface, std::function<void(std::uint32_t)> added,
               std::function<void(std::uint32_t)> removed);
    template <typename T>
    T* bindNumbered(std::uint32_t number, const wl_interface& interface, std::uint32_t version) const {
        const auto* global = find(number);
        return global ? static_cast<T*>(bindGlobal(*global, interface, version)) : nullptr;
    }

    // Waits until the compositor has worked off what was sent and what it had to say to that is dispatched.
    void roundTrip() const { wl_display_roundtrip(display()); }
    void flush() const { wl_display_flush(display()); }
    // Dispatches what has come, without waiting. False: nothing had.
    bool dispatch() const;
    int descriptor() const { return wl_display_get_fd(display()); }
    bool isBroken() const { return wl_display_get_error(display()) != 0; }

private:
    struct Global {
        std::uint32_t number;
        std::string interface;
        std::uint32_t version;
    };
    struct Watch {
        std::string interface;
        std::function<void(std::uint32_t)> added;
        std::function<void(std::uint32_t)> removed;
    };

    static void added(void* self, wl_registry* registry, std::uint32_t number, const char* interface,
                      std::uint32_t version);
    static void removed(void* self, wl_registry* registry, std::uint32_t number);
    const Global* find(std::string_view interface) const;
    const Global* find(std::uint32_t number) const;
    void* bindGlobal(const Global& global, const wl_interface& interface, std::uint32_t version) const;

    WaylandOwned<wl_display> connection;
    WaylandOwned<wl_registry> registry;
    std::vector<Global> globals;
    std::vector<Watch> watches;
};

// Ends the program with one sentence on standard error and status 1: nothing goes on without a compositor.
// Any thread.
[[noreturn]] void endForLostCompositor();

} // namespace platform::desktop
