#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"
#include "Platform/Foundation/EventThread.h"

namespace platform::desktop {

// The pasteboard's own thread, with its X connection.
class SelectionThread final : public EventThread, private EventThread::Source {
public:
    // Throws DisplayError.
    SelectionThread();
    ~SelectionThread() override;

    // Each event is handed to `handler`, on the thread; it must not resume tasks.
    void start(std::function<void(const xcb_generic_event_t&)> handler);

    // What follows belongs to the thread.
    const XConnection& x() const { return connection; }

    // The server's present time, 0 when the connection is broken.
    Task<xcb_timestamp_t> serverTime();

private:
    int descriptor() const override { return xcb_get_file_descriptor(connection); }
    bool dispatch() override;
    void flush() override { connection.flush(); }
    bool isBroken() const override { return xcb_connection_has_error(connection) != 0; }

    XConnection connection;
    std::function<void(const xcb_generic_event_t&)> handler;
    xcb_window_t clockWindow;
    xcb_timestamp_t clockTime = 0;
};

} // namespace platform::desktop
