#pragma once

#include "Platform/Desktop/Wayland/Server/WaylandConnection.h"
#include "Platform/Foundation/EventThread.h"
#include "Platform/Foundation/Task.h"

namespace platform::desktop {

// A thread of its own with a connection to the compositor.
class CompositorThread final : public EventThread, private EventThread::Source {
public:
    // Throws WaylandError.
    CompositorThread() = default;
    ~CompositorThread() override { stop(); }

    // Until then the connection is the caller's.
    void start() { EventThread::start(*this); }

    // What follows belongs to the thread.
    const WaylandConnection& connection() const { return wayland; }
    WaylandConnection& connection() { return wayland; }

    // Once the compositor has worked off all requests so far, and others have been told of what they changed.
    Task<void> settled();

private:
    int descriptor() const override { return wayland.descriptor(); }
    bool dispatch() override { return wayland.dispatch(); }
    void flush() override { wayland.flush(); }
    bool isBroken() const override { return wayland.isBroken(); }

    WaylandConnection wayland;
};

} // namespace platform::desktop
