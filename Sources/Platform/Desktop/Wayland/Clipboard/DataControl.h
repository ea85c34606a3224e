#pragma once

#include "Platform/Desktop/Clipboard/SelectionContent.h"
#include "Platform/Desktop/Wayland/Server/CompositorThread.h"

#include <set>

namespace platform::desktop {

// The clipboard, which the compositor lets programs read and take without the focus. Its thread's.
class DataControl {
public:
    static bool isOffered(const WaylandConnection& wayland);

    // The thread is not started yet, and ends before this. Throws WaylandError.
    explicit DataControl(CompositorThread& compositorThread);
    ~DataControl();
    DataControl(const DataControl&) = delete;
    DataControl& operator=(const DataControl&) = delete;

    // Of what another program has put on the clipboard: its forms' names. Empty if there is nothing, or if it
    // was put there from here.
    std::vector<std::string> offeredTypes() const;
    // How often other programs have put something there.
    unsigned changes() const { return changeCount; }

    // The bytes of a form of it; nothing if it is taken away meanwhile, is bigger than `room` or takes
    // longer.
    Task<std::optional<std::string>> read(std::string type, std::size_t room, Moment deadline);

    // Puts something on the clipboard; done once other programs have been told.
    Task<void> take(std::shared_ptr<const SelectionContent> content);
    // Leaves nothing on it.
    Task<void> leaveEmpty();
    // What was put there from here and still is.
    const SelectionContent* content() const { return source ? source->content.get() : nullptr; }

    // What has become of what was put there last.
    struct Fetches {
        int underWay = 0;
        // When somebody last began to fetch a form of it, and last had one.
        Moment begun;
        Moment ended;
    };
    const Fetches& fetches() const { return *fetched; }

private:
    using Manager = zwlr_data_control_manager_v1;
    using Device = zwlr_data_control_device_v1;
    using OfferHandle = zwlr_data_control_offer_v1;
    using SourceHandle = zwlr_data_control_source_v1;

    struct Offer {
        WaylandOwned<OfferHandle> handle;
        std::vector<std::string> types;
    };
    struct Source {
        WaylandOwned<SourceHandle> handle;
        std::shared_ptr<const SelectionContent> content;
    };

    void introduce(OfferHandle* handle);
    void select(OfferHandle* handle);
    void cancelled(SourceHandle* handle);
    void send(SourceHandle* handle, const char* type, int pipe);
    Task<void> serve(std::shared_ptr<const SelectionContent> content, const SelectionForm* form,
                     files::Descriptor pipe, std::shared_ptr<Fetches> account);

    CompositorThread& thread;
    WaylandOwned<wl_seat> seat;
    WaylandOwned<Manager> manager;
    WaylandOwned<Device> device;
    // Introduced, and not yet said what for.
    std::vector<std::shared_ptr<Offer>> introduced;
    std::shared_ptr<Offer> selection;
    std::unique_ptr<Source> source;
    // The compositor may not know of it yet.
    bool isSettling = false;
    unsigned changeCount = 0;
    std::shared_ptr<Fetches> fetched = std::make_shared<Fetches>();
};

} // namespace platform::desktop
