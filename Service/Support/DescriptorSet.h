#pragma once

#include "Service/Support/Handles.h"

#include <cstdint>
#include <span>
#include <sys/epoll.h>

namespace lumarin::service {

// Descriptors that are waited for together, by one that is readable when there is anything to see. For one
// thread.
class DescriptorSet {
public:
    // Throws std::system_error.
    DescriptorSet();

    // Waits for `what`, in the words of epoll, and for nothing else of the descriptor. Throws
    // std::system_error.
    void watch(int descriptor, std::uint32_t what);
    void forget(int descriptor) noexcept;

    int descriptor() const { return set.number(); }

    // What there is to see at the moment, as much as there is room for.
    std::span<const epoll_event> look(std::span<epoll_event> room) const;

private:
    Descriptor set;
};

} // namespace lumarin::service
