#include "Platform/Desktop/Wayland/Clipboard/DataControl.h"

#include "Platform/Desktop/Clipboard/InPassing.h"

#include <algorithm>
#include <array>

#include <ext-data-control-v1-client-protocol.h>
#include <fcntl.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

using namespace std::chrono_literals;

// A program that takes nothing of what it has asked for in this time does not want it any more.
constexpr auto servingLimit = 10s;

// The standard protocol has the requests and events of the older one, each under the same number and with the
// same arguments; only the names of its interfaces differ, of which no more than the manager's is ever sent.
const wl_interface& managerInterface(const WaylandConnection& wayland) {
    return wayland.offers(ext_data_control_manager_v1_interface) ? ext_data_control_manager_v1_interface
                                                                 : zwlr_data_control_manager_v1_interface;
}

} // namespace

bool DataControl::isOffered(const WaylandConnection& wayland) {
    return wayland.offers(managerInterface(wayland)) && wayland.offers(wl_seat_interface);
}

DataControl::DataControl(CompositorThread& compositorThread)
    : thread(compositorThread),
      seat(thread.connection().bind<wl_seat>(wl_seat_interface, 1)),
      manager(thread.connection().bind<Manager>(managerInterface(thread.connection()), 1)) {
    if (!seat || !manager)
        throw WaylandError("The compositor does not let Lumarin read the clipboard.");
    device.reset(zwlr_data_control_manager_v1_get_data_device(manager.get(), seat.get()));
    static constexpr zwlr_data_control_device_v1_listener listener{
        .data_offer = [](void* self, Device*,
                         OfferHandle* handle) { static_cast<DataControl*>(self)->introduce(handle); },
        .selection = [](void* self, Device*,
                        OfferHandle* handle) { static_cast<DataControl*>(self)->select(handle); },
        .finished = [](void* self, Device*) { static_cast<DataControl*>(self)->select(nullptr); },
        // The one of the middle button is nobody's business here.
        .primary_selection =
            [](void* self, Device*, OfferHandle* handle) {
                std::erase_if(static_cast<DataControl*>(self)->introduced,
                              [handle](const auto& offer) { return offer->handle.get() == handle; });
            }};
    zwlr_data_control_device_v1_add_listener(device.get(), &listener, this);
    thread.connection().roundTrip();
}

DataControl::~DataControl() = default;

void DataControl::introduce(OfferHandle* handle) {
    auto offer = std::make_shared<Offer>();
    offer->handle.reset(handle);
    static constexpr zwlr_data_control_offer_v1_listener listener{
        [](void* told, OfferHandle*, const char* type) {
            static_cast<Offer*>(told)->types.emplace_back(type);
        }};
    zwlr_data_control_offer_v1_add_listener(handle, &listener, offer.get());
    introduced.push_back(std::move(offer));
}

// What is put there from here is told of as well, before it is settled. What is told of later is another
// program's.
void DataControl::select(OfferHandle* handle) {
    const auto found =
        std::ranges::find_if(introduced, [&](const auto& offer) { return offer->handle.get() == handle; });
    selection = found != introduced.end() ? *found : nullptr;
    if (found != introduced.end())
        introduced.erase(found);
    if (isSettling)
        return;
    source.reset();
    if (selection)
        ++changeCount;
}

// By another program, whose offer is told of behind this.
void DataControl::cancelled(SourceHandle* handle) {
    if (!source || source->handle.get() != handle)
        return;
    source.reset();
    selection.reset();
}

std::vector<std::string> DataControl::offeredTypes() const {
    return selection && !source ? selection->types : std::vector<std::string>();
}

Task<std::optional<std::string>> DataControl::read(std::string type, std::size_t room, Moment deadline) {
    const auto offer = selection;
    std::array<int, 2> ends;
    if (!offer || source || pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        co_return std::nullopt;
    const files::Descriptor reading(ends[0]);
    zwlr_data_control_offer_v1_receive(offer->handle.get(), type.c_str(), ends[1]);
    thread.connection().flush();
    close(ends[1]);
    std::string bytes;
    std::vector<char> buffer(std::size_t{64} << 10U);
    while (!thread.isOver()) {
        const auto count =
            files::uninterrupted([&] { return ::read(reading.number(), buffer.data(), buffer.size()); });
        if (count == 0)
            co_return bytes;
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
            if (bytes.size() > room)
                co_return std::nullopt;
            continue;
        }
        if (errno != EAGAIN)
            co_return std::nullopt;
        const bool isReady = co_await thread.ready(reading.number(), POLLIN, deadline);
        if (!isReady)
            co_return std::nullopt;
    }
    co_return std::nullopt;
}

Task<void> DataControl::take(std::shared_ptr<const SelectionContent> content) {
    auto next = std::make_unique<Source>();
    next->handle.reset(zwlr_data_control_manager_v1_create_data_source(manager.get()));
    next->content = std::move(content);
    static constexpr zwlr_data_control_source_v1_listener listener{
        .send = [](void* self, SourceHandle* handle, const char* type,
                   std::int32_t pipe) { static_cast<DataControl*>(self)->send(handle, type, pipe); },
        .cancelled = [](void* self,
                        SourceHandle* handle) { static_cast<DataControl*>(self)->cancelled(handle); }};
    zwlr_data_control_source_v1_add_listener(next->handle.get(), &listener, this);
    for (const auto& form : next->content->forms)
        zwlr_data_control_source_v1_offer(next->handle.get(), form.target.c_str());
    zwlr_data_control_device_v1_set_selection(device.get(), next->handle.get());
    // The one before is told of its end too late to be asked about it.
    source = std::move(next);
    fetched = std::make_shared<Fetches>();
    isSettling = true;
    co_await thread.settled();
    isSettling = false;
}

Task<void> DataControl::leaveEmpty() {
    source.reset();
    selection.reset();
    zwlr_data_control_device_v1_set_selection(device.get(), nullptr);
    co_await thread.settled();
}

void DataControl::send(SourceHandle* handle, const char* type, int pipe) {
    files::Descriptor end(pipe);
    const auto* form = source && source->handle.get() == handle ? source->content->form(type) : nullptr;
    if (!form)
        return;
    fcntl(end.number(), F_SETFL, fcntl(end.number(), F_GETFL) | O_NONBLOCK);
    // Clipboard managers look at the hint that is meant for them.
    const auto account = type == inPassing.target ? std::make_shared<Fetches>() : fetched;
    ++account->underWay;
    account->begun = std::chrono::steady_clock::now();
    // Dispatching may not resume tasks.
    spawn(thread, serve(source->content, form, std::move(end), account));
}

// The form lives as long as its owner does.
Task<void> DataControl::serve(std::shared_ptr<const SelectionContent> /*owner*/, const SelectionForm* form,
                              files::Descriptor pipe, std::shared_ptr<Fetches> account) {
    std::string_view rest = form->bytes;
    while (!rest.empty() && !thread.isOver()) {
        const auto written =
            files::uninterrupted([&] { return ::write(pipe.number(), rest.data(), rest.size()); });
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
            continue;
        }
        if (errno != EAGAIN)
            break;
        const bool isReady =
            co_await thread.ready(pipe.number(), POLLOUT, std::chrono::steady_clock::now() + servingLimit);
        if (!isReady)
            break;
    }
    --account->underWay;
    account->ended = std::chrono::steady_clock::now();
}

} // namespace platform::desktop
