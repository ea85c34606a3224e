#pragma once

#include "Platform/Desktop/Wayland/Server/CompositorThread.h"

#include <atomic>
#include <map>
#include <mutex>
#include <optional>

namespace platform::desktop {

// A window of an application, as the compositor tells of it.
struct Toplevel {
    // Never used again for another one; not 0.
    std::uint32_t number = 0;
    // What the application's desktop entry is called, mostly; for X11 windows their class.
    std::string application;
    bool isActivated = false;
    // The number of the output's global that it is on.
    std::optional<std::uint32_t> output;
};

// The windows of all applications, where the compositor tells of them. Any thread.
class Toplevels {
public:
    // The thread is not started yet, and ends before this.
    explicit Toplevels(CompositorThread& compositorThread);
    ~Toplevels();
    Toplevels(const Toplevels&) = delete;
    Toplevels& operator=(const Toplevels&) = delete;

    // Whether the compositor tells of windows at all.
    bool areKnown() const { return manager != nullptr; }

    // The window that has the keyboard; none also while something else has it.
    std::optional<Toplevel> front() const;
    std::optional<Toplevel> find(std::uint32_t number) const;

    // Gives the window the keyboard; it comes soon.
    void activate(std::uint32_t number);

private:
    using Handle = zwlr_foreign_toplevel_handle_v1;

    struct Entry {
        WaylandOwned<Handle> handle;
        Toplevel told;
        // Holds from the next "done" on.
        Toplevel pending;
    };

    void add(Handle* handle);
    Entry& entryOf(Handle* handle);

    CompositorThread& thread;
    WaylandOwned<wl_seat> seat;
    WaylandOwned<zwlr_foreign_toplevel_manager_v1> manager;
    std::map<std::uint32_t, WaylandOwned<wl_output>> outputs;
    mutable std::mutex mutex;
    std::map<Handle*, Entry> entries;
    std::uint32_t numbers = 0;
};

} // namespace platform::desktop
