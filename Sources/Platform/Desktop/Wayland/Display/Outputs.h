#pragma once

#include "Platform/Desktop/Wayland/Server/WaylandConnection.h"
#include "Platform/Desktop/Windows/Monitor.h"

#include <map>
#include <optional>

namespace platform::desktop {

// An output of the compositor's. Value.
struct Output {
    // Of its global, which every connection knows it by.
    std::uint32_t number = 0;
    wl_output* handle = nullptr;
    // Where it is among the outputs, in points, downwards.
    QRect frame;
    // Pixels to a point; one that is not whole too.
    double scale = 1;
};

// The outputs, as they are now. Main thread.
class Outputs {
public:
    Outputs(WaylandConnection& wayland, std::function<void()> changed);
    ~Outputs();
    Outputs(const Outputs&) = delete;
    Outputs& operator=(const Outputs&) = delete;

    // From the left to the right.
    std::vector<Output> all() const;
    std::optional<Output> find(std::uint32_t number) const;

private:
    struct Entry {
        WaylandOwned<wl_output> output;
        WaylandOwned<zxdg_output_v1> extended;
        QPoint place;
        QSize pixels;
        bool isTurned = false;
        int wholeScale = 1;
        QRect logical;
        bool isComplete = false;
        Outputs* owner = nullptr;
    };

    void add(std::uint32_t number);

    WaylandConnection& wayland;
    const std::function<void()> report;
    WaylandOwned<zxdg_output_manager_v1> manager;
    std::map<std::uint32_t, Entry> entries;
};

} // namespace platform::desktop
