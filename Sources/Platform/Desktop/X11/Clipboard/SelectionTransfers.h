#pragma once

#include "Platform/Desktop/Clipboard/SelectionContent.h"
#include "Platform/Desktop/X11/Clipboard/SelectionThread.h"

#include <list>
#include <memory>

namespace platform::desktop {

// One form on its way to a program that asked for it.
struct SelectionTransfer {
    xcb_window_t requestor;
    xcb_atom_t property;
    xcb_atom_t type;
    std::shared_ptr<const SelectionContent> content;
    const SelectionForm* form;
    bool taken = false;
    bool vanished = false;
    bool finished = false;
};

// Writes forms to the properties of those who asked: at once, or piece by piece if they are big, to any
// number of requestors at a time. One that stops taking its pieces is given up. The pasteboard's thread.
class SelectionTransfers {
public:
    explicit SelectionTransfers(SelectionThread& thread);

    // The bytes are in the property, or announced there, on return; the content is kept until they have gone.
    std::shared_ptr<SelectionTransfer> send(std::shared_ptr<const SelectionContent> content,
                                            const SelectionForm& form, xcb_window_t requestor,
                                            xcb_atom_t property);

    void handle(const xcb_generic_event_t& event);

private:
    Task<void> sendPieces(std::shared_ptr<SelectionTransfer> transfer);
    void put(const SelectionTransfer& transfer, std::string_view bytes);
    void watch(xcb_window_t requestor, std::uint32_t events);

    SelectionThread& thread;
    const XConnection& x;
    std::list<std::shared_ptr<SelectionTransfer>> underWay;
};

} // namespace platform::desktop
