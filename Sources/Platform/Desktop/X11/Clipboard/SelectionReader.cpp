#include "Platform/Desktop/X11/Clipboard/SelectionReader.h"

#include "Platform/Input/PasteboardError.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <utility>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// An application may be busy for a second before it answers; a transfer under way shows life more often.
constexpr auto answerLimit = 1250ms;
constexpr auto pieceLimit = 1000ms;
constexpr auto contentLimit = 5000ms;
// Of all forms together: they are kept until they are put back. A file of this size is moved by its name, not
// through the clipboard.
constexpr std::size_t mostBytes = std::size_t{512} << 20U;
// Owners that come one after another while they are read.
constexpr int mostOwners = 3;

// Targets that say or do something about the selection and are none of its forms.
constexpr std::array notForms = {"TARGETS", "MULTIPLE", "TIMESTAMP",        "SAVE_TARGETS",
                                 "DELETE",  "INCR",     "INSERT_SELECTION", "INSERT_PROPERTY"};
// Properties that only name what belongs to the owner and goes with it.
constexpr std::array resources = {"PIXMAP", "BITMAP", "DRAWABLE", "COLORMAP", "WINDOW"};

// Late answers to a question that was given up arrive under a name that is not in use again for some time.
constexpr unsigned propertyNames = 16;

} // namespace

SelectionReader::SelectionReader(SelectionThread& ownThread, const SelectionWatch& ownerWatch,
                                 const LogSink& sink)
    : thread(ownThread),
      x(thread.x()),
      watch(ownerWatch),
      log(sink),
      window(x.makeHiddenWindow(XCB_EVENT_MASK_PROPERTY_CHANGE)),
      clipboard(x.atom("CLIPBOARD")),
      incremental(x.atom("INCR")) {}

// Never a mixture of what two owners have.
Task<SelectionContent> SelectionReader::content() {
    const auto deadline = std::chrono::steady_clock::now() + contentLimit;
    for (int change = 0; change < mostOwners; ++change) {
        const auto version = watch.changes();
        if (watch.owner() == XCB_NONE)
            co_return SelectionContent();
        auto result = co_await contentOf(version, deadline);
        if (watch.changes() == version || thread.isOver())
            co_return result;
    }
    throw PasteboardError("The clipboard changes faster than it can be read");
}

Task<SelectionContent> SelectionReader::contentOf(unsigned version, Moment deadline) {
    const auto time = co_await thread.serverTime();
    room = mostBytes;
    int silences = 0;
    std::vector<std::string> missing;
    const auto targets = co_await offeredTargets(time, deadline);
    const auto offered = targets.value_or(std::vector<xcb_atom_t>());
    std::map<std::size_t, SelectionForm> found;
    const auto isThere = [&] { return watch.changes() == version && !thread.isOver(); };
    for (auto place : textFirst(offered)) {
        if (!isThere() || silences == 2)
            break;
        const auto form = offered[place];
        auto name = x.nameOf(form);
        if (std::ranges::count(notForms, name) != 0
            || std::find(offered.begin(), offered.end(), form) - offered.begin()
                   < static_cast<std::ptrdiff_t>(place))
            continue;
        auto answer = co_await ask(form, time, deadline);
        silences = answer.came ? 0 : silences + 1;
        if (answer.isCutOff || !answer.came)
            missing.push_back(name);
        if (!answer.data)
            continue;
        auto type = answer.data->type == form ? name : x.nameOf(answer.data->type);
        if (std::ranges::count(resources, type) == 0) {
            room -= std::min(room, answer.data->bytes.size());
            found[place] = {name, type, answer.data->format, std::move(answer.data->bytes)};
        }
    }
    SelectionContent result;
    for (auto& [place, form] : found)
        result.forms.push_back(std::move(form));
    if (!isThere())
        co_return result;
    if (!targets || silences == 2
        || std::ranges::any_of(missing, [&](const auto& name) { return !result.hasKindOf(name); }))
        throw PasteboardError("The program that owns the clipboard does not hand out what is on it");
    for (const auto& name : missing)
        log("[Clipboard] Too slow or too big to be kept: " + name);
    co_return result;
}

// Their places in the list.
std::vector<std::size_t> SelectionReader::textFirst(const std::vector<xcb_atom_t>& forms) const {
    std::vector<std::size_t> places(forms.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::stable_partition(places.begin(), places.end(), [&](std::size_t place) {
        return std::ranges::any_of(textTargets,
                                   [&](const char* text) { return x.atom(text) == forms[place]; });
    });
    return places;
}

Task<std::optional<std::vector<xcb_atom_t>>> SelectionReader::offeredTargets(xcb_timestamp_t time,
                                                                             Moment deadline) {
    auto answer = co_await ask(x.atom("TARGETS"), time, deadline);
    if (answer.data)
        co_return answer.data->values();
    if (answer.came) // an old program that has nothing but text
        co_return std::vector{x.atom("UTF8_STRING"), xcb_atom_t{XCB_ATOM_STRING}};
    co_return std::nullopt;
}

Task<std::optional<std::string>> SelectionReader::text() {
    room = mostBytes;
    const auto deadline = std::chrono::steady_clock::now() + contentLimit;
    const auto time = co_await thread.serverTime();
    for (const char* form : textTargets) {
        auto answer = co_await ask(x.atom(form), time, deadline);
        if (!answer.came)
            break;
        if (answer.data) {
            if (auto result = textOf(x.nameOf(answer.data->type), std::move(answer.data->bytes)))
                co_return result;
        }
    }
    co_return std::nullopt;
}

Task<SelectionReader::Answer> SelectionReader::ask(xcb_atom_t wanted, xcb_timestamp_t time, Moment deadline) {
    const auto owner = watch.owner();
    if (owner == XCB_NONE)
        co_return Answer{true, false, std::nullopt};
    target = wanted;
    property = x.atom("LUMARIN_SELECTION_" + std::to_string(questions++ % propertyNames));
    answered = granted = pieceCame = false;
    xcb_delete_property(x, window, property);
    xcb_convert_selection(x, window, clipboard, target, property, time);
    auto limit = std::min(deadline, std::chrono::steady_clock::now() + answerLimit);
    co_await thread.until([&] { return answered || watch.owner() != owner; }, limit);

    Answer answer{answered, false, std::nullopt};
    if (answered && granted) {
        answer.data = x.property(window, property, true);
        if (answer.data && answer.data->type == incremental)
            answer.data = co_await receivePieces(property, deadline);
        answer.isCutOff = !answer.data;
    }
    property = XCB_ATOM_NONE;
    co_return answer;
}

// Reading the announcement with its deletion has told the owner to begin; each deletion asks for the next
// piece.
Task<std::optional<XProperty>> SelectionReader::receivePieces(xcb_atom_t name, Moment deadline) {
    const auto owner = watch.owner();
    std::optional<XProperty> whole;
    while (true) {
        auto limit = std::min(deadline, std::chrono::steady_clock::now() + pieceLimit);
        co_await thread.until([&] { return pieceCame || watch.owner() != owner; }, limit);
        if (!std::exchange(pieceCame, false))
            co_return std::nullopt;
        auto piece = x.property(window, name, true);
        if (!piece || piece->type == incremental)
            continue; // an event of the announcement itself
        if (piece->bytes.empty())
            co_return whole ? std::move(whole) : std::move(piece);
        if (!whole) {
            whole = std::move(piece);
        } else {
            whole->bytes += piece->bytes;
            if (whole->bytes.size() > room)
                co_return std::nullopt;
        }
    }
}

void SelectionReader::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_SELECTION_NOTIFY: {
        const auto& notice = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
        if (notice.requestor != window || property == XCB_ATOM_NONE)
            return;
        // A refusal names no property.
        if (notice.property == property || (notice.property == XCB_ATOM_NONE && notice.target == target)) {
            answered = true;
            granted = notice.property == property;
        }
        return;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window != window || change.state != XCB_PROPERTY_NEW_VALUE)
            return;
        if (change.atom == property)
            pieceCame = true;
        else // too late: taken away, so that the owner gets to the end of its transfer
            xcb_delete_property(x, window, change.atom);
        return;
    }
    default:
        return;
    }
}

} // namespace platform::desktop
