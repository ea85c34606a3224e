#pragma once

#include "Platform/Desktop/Wayland/Server/WaylandConnection.h"

#include <functional>
#include <memory>

#include <QImage>
#include <QRegion>

namespace platform::desktop {

// Pixels that the compositor can read, with transparency. It may keep them for a while after they were shown.
// Main thread.
class SharedPicture {
public:
    // Nothing where there is no memory for it.
    static std::unique_ptr<SharedPicture> make(wl_shm& memory, QSize size);
    ~SharedPicture();
    SharedPicture(const SharedPicture&) = delete;
    SharedPicture& operator=(const SharedPicture&) = delete;

    QImage& image() { return pixels; }
    wl_buffer* buffer() const { return handle.get(); }

    // From when it is shown until the compositor gives it back, which is told then.
    bool isInUse = false;
    std::function<void()> onRelease;
    // Where it differs from what is to be shown.
    QRegion stale;

private:
    SharedPicture(wl_shm& memory, QSize size, int file, void* mapped);

    const std::size_t length;
    void* const bytes;
    QImage pixels;
    WaylandOwned<wl_buffer> handle;
};

} // namespace platform::desktop
