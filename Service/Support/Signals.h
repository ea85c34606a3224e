#pragma once

#include "Service/Support/Handles.h"

#include <atomic>
#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>

namespace lumarin::service {

// Something that happens once, which threads that wait for descriptors wait for as well. Any thread.
class Signal {
public:
    Signal() : event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (!event.isOpen())
            throw std::system_error(errno, std::generic_category(), "No event can be made");
    }

    void raise() {
        raised = true;
        ::eventfd_write(event.number(), 1);
    }
    bool isRaised() const { return raised; }
    // Readable from the signal on.
    int descriptor() const { return event.number(); }

private:
    std::atomic<bool> raised = false;
    Descriptor event;
};

// The two steps in which a service ends.
struct EndSignals {
    Signal stop;    // No request is taken in any more.
    Signal abandon; // Answers under way are broken off.
};

} // namespace lumarin::service
