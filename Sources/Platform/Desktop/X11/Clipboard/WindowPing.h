#pragma once

#include "Platform/Desktop/X11/Clipboard/ClientIdentity.h"
#include "Platform/Desktop/X11/Clipboard/SelectionThread.h"

#include <memory>
#include <set>

namespace platform::desktop {

// A question to a window whether it has worked off the events sent to it so far.
struct WorkInquiry {
    enum class State { open, answered, givenUp };

    xcb_window_t window;
    bool speaksPing;
    State state = State::open;
    Moment answeredAt{};
    // The message that is out, and whether it is the second one.
    std::uint32_t stamp = 0;
    bool confirming = false;
};

// Asks windows for a sign of life that stands in line behind the keys typed into them. The pasteboard's
// thread.
class WindowPing {
public:
    WindowPing(SelectionThread& thread, const ClientIdentity& clients);

    // Nothing where the window has no way of telling, or is not known to make use of it. Given up after some
    // seconds.
    std::shared_ptr<WorkInquiry> ask(xcb_window_t window);

    void handle(const xcb_generic_event_t& event);

private:
    bool speaksPing(xcb_window_t window) const;
    bool ownsPrimary(xcb_window_t window) const;
    void send(WorkInquiry& inquiry);
    void sendPing(const WorkInquiry& inquiry) const;
    void askForPrimary() const;
    void answerCame(bool byPing, xcb_window_t window, std::uint32_t stamp);
    void listen();

    SelectionThread& thread;
    const XConnection& x;
    const ClientIdentity& clients;
    xcb_window_t window;
    xcb_atom_t protocols;
    xcb_atom_t ping;
    std::uint32_t lastStamp = 0;
    bool listening = false;
    std::vector<std::shared_ptr<WorkInquiry>> open;
    // Windows that left a question unanswered, though they should be able to answer it: their silence says
    // nothing. They are asked all the same, and believed again when they answer.
    std::set<xcb_window_t> mute;
};

} // namespace platform::desktop
