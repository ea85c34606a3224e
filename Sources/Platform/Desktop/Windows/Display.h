#pragma once

#include "Platform/Desktop/Pictures/Backdrop.h"
#include "Platform/Desktop/Windows/Monitor.h"
#include "Platform/Desktop/Windows/Surface.h"

#include <functional>
#include <memory>
#include <vector>

namespace platform::desktop {

// What the session shows windows on. Main thread, while Qt's application object lives.
class Display {
public:
    virtual ~Display() = default;

    // Called after the monitors or the backdrop have changed.
    std::function<void()> onChange;

    // As they are now, the primary one first; none while all are gone or switched off. Takes a while: every
    // window may have to be asked what it keeps free for itself.
    virtual std::vector<Monitor> monitors() = 0;

    // The one, of at least one, that a person works at.
    virtual const Monitor& mainMonitor(const std::vector<Monitor>& monitors) = 0;

    virtual Backdrop backdrop() = 0;

    // `margin` pixels on each side will be shadow.
    virtual std::unique_ptr<Surface> makeSurface(int margin) = 0;
};

} // namespace platform::desktop
