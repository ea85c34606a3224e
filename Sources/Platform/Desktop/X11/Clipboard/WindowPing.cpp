#include "Platform/Desktop/X11/Clipboard/WindowPing.h"

#include <algorithm>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// A toolkit may answer a message while a key that came before it still waits in a queue of its own; it
// empties that queue before it reads on. So the answer counts only for a second message, sent when the first
// is answered and a moment has passed.
constexpr auto confirmationDelay = 500us;
constexpr auto inquiryLimit = 10s;

} // namespace

WindowPing::WindowPing(SelectionThread& ownThread, const ClientIdentity& knownClients)
    : thread(ownThread),
      x(thread.x()),
      clients(knownClients),
      window(x.makeHiddenWindow()),
      protocols(x.atom("WM_PROTOCOLS")),
      ping(x.atom("_NET_WM_PING")) {}

std::shared_ptr<WorkInquiry> WindowPing::ask(xcb_window_t target) {
    bool ponged = speaksPing(target);
    if (!ponged && !ownsPrimary(target))
        return nullptr;
    auto inquiry = std::make_shared<WorkInquiry>(WorkInquiry{.window = target, .speaksPing = ponged});
    open.push_back(inquiry);
    listen();
    send(*inquiry);
    thread.postAfter(inquiryLimit, [this, weak = std::weak_ptr(inquiry)] {
        if (auto rest = weak.lock(); rest && rest->state == WorkInquiry::State::open) {
            rest->state = WorkInquiry::State::givenUp;
            mute.insert(rest->window);
            std::erase(open, rest);
            listen();
        }
    });
    return mute.contains(target) ? nullptr : inquiry;
}

bool WindowPing::speaksPing(xcb_window_t target) const {
    auto known = x.property(target, protocols);
    return known && std::ranges::count(known->values(), ping) != 0;
}

bool WindowPing::ownsPrimary(xcb_window_t target) const {
    auto primary = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, XCB_ATOM_PRIMARY));
    return primary && primary->owner != XCB_NONE
           && clients.connectionOf(primary->owner) == clients.connectionOf(target);
}

void WindowPing::send(WorkInquiry& inquiry) {
    // Stamps look like the times that are expected there, and differ.
    auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
    lastStamp = std::max(lastStamp + 1, static_cast<std::uint32_t>(now.count()));
    inquiry.stamp = lastStamp;
    if (inquiry.speaksPing)
        sendPing(inquiry);
    else
        askForPrimary();
}

void WindowPing::sendPing(const WorkInquiry& inquiry) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = inquiry.window;
    message.type = protocols;
    message.data.data32[0] = ping;
    message.data.data32[1] = inquiry.stamp;
    message.data.data32[2] = inquiry.window;
    xcb_send_event(x, 0, inquiry.window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
}

// A window that does not speak ping, but whose program owns the other selection (it mostly does where text is
// selected), answers for that one in the same order.
void WindowPing::askForPrimary() const {
    auto property = x.atom("LUMARIN_SIGN_OF_LIFE");
    xcb_convert_selection(x, window, XCB_ATOM_PRIMARY, x.atom("TARGETS"), property, XCB_CURRENT_TIME);
}

// The answers go to the root window, together with all that happens to the windows on it; it is listened to
// only while an answer is due. Some toolkits address theirs to those who look after the root window itself.
void WindowPing::listen() {
    bool on = !open.empty();
    if (listening == on)
        return;
    listening = on;
    const std::uint32_t events =
        on ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY : 0U;
    xcb_change_window_attributes(x, x.root(), XCB_CW_EVENT_MASK, &events);
}

void WindowPing::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.type == protocols && message.data.data32[0] == ping)
            answerCame(true, message.data.data32[2], message.data.data32[1]);
        return;
    }
    case XCB_SELECTION_NOTIFY: {
        const auto& notice = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
        if (notice.requestor == window)
            answerCame(false, XCB_NONE, lastStamp);
        return;
    }
    default:
        return;
    }
}

void WindowPing::answerCame(bool byPing, xcb_window_t target, std::uint32_t stamp) {
    for (const auto& inquiry : open) {
        bool meant = inquiry->speaksPing == byPing && (!byPing || inquiry->window == target);
        if (!meant || inquiry->stamp == 0 || inquiry->stamp > stamp)
            continue;
        inquiry->stamp = 0;
        mute.erase(inquiry->window);
        if (inquiry->confirming) {
            inquiry->state = WorkInquiry::State::answered;
            inquiry->answeredAt = std::chrono::steady_clock::now();
        } else {
            inquiry->confirming = true;
            thread.postAfter(confirmationDelay, [this, inquiry] { send(*inquiry); });
        }
    }
    std::erase_if(open, [](const auto& inquiry) { return inquiry->state == WorkInquiry::State::answered; });
    listen();
}

} // namespace platform::desktop
