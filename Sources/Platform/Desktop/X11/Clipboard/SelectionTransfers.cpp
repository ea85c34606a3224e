#include "Platform/Desktop/X11/Clipboard/SelectionTransfers.h"

#include <algorithm>
#include <utility>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// Within what any server takes as one request; a multiple of each format's unit.
constexpr std::size_t pieceSize = std::size_t{192} * 1024;
constexpr auto takingLimit = 5s;

} // namespace

SelectionTransfers::SelectionTransfers(SelectionThread& ownThread) : thread(ownThread), x(thread.x()) {}

std::shared_ptr<SelectionTransfer> SelectionTransfers::send(std::shared_ptr<const SelectionContent> content,
                                                            const SelectionForm& form, xcb_window_t requestor,
                                                            xcb_atom_t property) {
    auto transfer = std::make_shared<SelectionTransfer>(
        SelectionTransfer{requestor, property, x.atom(form.type), std::move(content), &form});
    if (form.bytes.size() <= pieceSize) {
        put(*transfer, form.bytes);
        transfer->finished = true;
        return transfer;
    }
    // The requestor's deletion of the announcement asks for the first piece.
    watch(requestor, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const std::uint32_t size[] = {static_cast<std::uint32_t>(form.bytes.size())};
    x.setProperty(requestor, property, x.atom("INCR"), size);
    underWay.push_back(transfer);
    spawn(thread, sendPieces(transfer));
    return transfer;
}

Task<void> SelectionTransfers::sendPieces(std::shared_ptr<SelectionTransfer> transfer) {
    std::string_view rest = transfer->form->bytes;
    for (bool last = false; !last;) {
        co_await thread.until([&] { return transfer->taken || transfer->vanished; }, takingLimit);
        if (!std::exchange(transfer->taken, false) || transfer->vanished)
            break;
        // An empty piece is the end.
        last = rest.empty();
        put(*transfer, rest.substr(0, pieceSize));
        rest.remove_prefix(std::min(rest.size(), pieceSize));
    }
    co_await thread.until([&] { return transfer->taken || transfer->vanished; }, takingLimit);
    transfer->finished = true;
    underWay.remove(transfer);
    if (std::ranges::count(underWay, transfer->requestor, &SelectionTransfer::requestor) == 0)
        watch(transfer->requestor, XCB_EVENT_MASK_NO_EVENT);
}

void SelectionTransfers::put(const SelectionTransfer& transfer, std::string_view bytes) {
    const auto format = transfer.form->format;
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, transfer.requestor, transfer.property, transfer.type,
                        format, static_cast<std::uint32_t>(bytes.size() / (format / 8U)), bytes.data());
}

void SelectionTransfers::watch(xcb_window_t requestor, std::uint32_t events) {
    xcb_change_window_attributes(x, requestor, XCB_CW_EVENT_MASK, &events);
}

void SelectionTransfers::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.state != XCB_PROPERTY_DELETE)
            return;
        for (auto& transfer : underWay) {
            if (transfer->requestor == change.window && transfer->property == change.atom)
                transfer->taken = true;
        }
        return;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto& end = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        for (auto& transfer : underWay) {
            if (transfer->requestor == end.window)
                transfer->vanished = true;
        }
        return;
    }
    default:
        return;
    }
}

} // namespace platform::desktop
