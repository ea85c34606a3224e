#pragma once

#include "Platform/Desktop/X11/Clipboard/SelectionContent.h"
#include "Platform/Desktop/X11/Clipboard/SelectionWatch.h"

namespace platform::desktop {

// Asks the owner of the clipboard for what it holds; one question at a time. The pasteboard's thread.
class SelectionReader {
public:
    SelectionReader(SelectionThread& thread, const SelectionWatch& watch);

    // Everything the owner has. Nothing of an owner that is dead, mute or refuses; a form that stops on its
    // way is left out.
    Task<SelectionContent> content();

    // The plain text, in valid UTF-8.
    Task<std::optional<std::string>> text();

    void handle(const xcb_generic_event_t& event);

private:
    struct Answer {
        // False: not a word within the time limit.
        bool came = false;
        std::optional<XProperty> data;
    };

    Task<Answer> ask(xcb_atom_t target, xcb_timestamp_t time, Moment deadline);
    Task<std::vector<xcb_atom_t>> targets(xcb_timestamp_t time, Moment deadline);
    Task<std::optional<XProperty>> receivePieces(xcb_atom_t property, Moment deadline);

    SelectionThread& thread;
    const XConnection& x;
    const SelectionWatch& watch;
    xcb_window_t window;
    xcb_atom_t clipboard;
    xcb_atom_t incremental;

    // The question being asked.
    unsigned questions = 0;
    xcb_atom_t target = XCB_ATOM_NONE;
    xcb_atom_t property = XCB_ATOM_NONE;
    bool answered = false;
    bool granted = false;
    bool pieceCame = false;
};

} // namespace platform::desktop
