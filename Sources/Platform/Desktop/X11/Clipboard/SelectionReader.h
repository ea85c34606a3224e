#pragma once

#include "Platform/Desktop/Clipboard/SelectionContent.h"
#include "Platform/Desktop/X11/Clipboard/SelectionWatch.h"
#include "Platform/Foundation/LogSink.h"

namespace platform::desktop {

// Asks the owner of the clipboard for what it holds; one question at a time. The pasteboard's thread.
class SelectionReader {
public:
    SelectionReader(SelectionThread& thread, const SelectionWatch& watch, const LogSink& log);

    // Everything the owner has; nothing of an owner that is dead or refuses. A form that stops on its way or
    // is too big is left out and logged, if there is another one of its kind. Throws PasteboardError where
    // the owner lives and a kind of what it has can't be had.
    Task<SelectionContent> content();

    // The plain text, in valid UTF-8.
    Task<std::optional<std::string>> text();

    void handle(const xcb_generic_event_t& event);

private:
    struct Answer {
        // False: not a word within the time limit.
        bool came = false;
        // It was granted, and stopped on its way or was too big.
        bool isCutOff = false;
        std::optional<XProperty> data;
    };

    Task<SelectionContent> contentOf(unsigned version, Moment deadline);
    Task<Answer> ask(xcb_atom_t target, xcb_timestamp_t time, Moment deadline);
    // Nothing of an owner that keeps silent.
    Task<std::optional<std::vector<xcb_atom_t>>> offeredTargets(xcb_timestamp_t time, Moment deadline);
    Task<std::optional<XProperty>> receivePieces(xcb_atom_t property, Moment deadline);
    std::vector<std::size_t> textFirst(const std::vector<xcb_atom_t>& forms) const;

    SelectionThread& thread;
    const XConnection& x;
    const SelectionWatch& watch;
    const LogSink& log;
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
    // Bytes that may still be taken in.
    std::size_t room = 0;
};

} // namespace platform::desktop
