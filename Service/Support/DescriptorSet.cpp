#include "Service/Support/DescriptorSet.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace lumarin::service {

DescriptorSet::DescriptorSet() : set(::epoll_create1(EPOLL_CLOEXEC)) {
    if (!set.isOpen())
        throw std::system_error(errno, std::generic_category(), "Nothing can be waited for");
}

void DescriptorSet::watch(int descriptor, std::uint32_t what) {
    epoll_event event{};
    event.events = what;
    event.data.fd = descriptor;
    if (::epoll_ctl(set.number(), EPOLL_CTL_ADD, descriptor, &event) != 0
        && (errno != EEXIST || ::epoll_ctl(set.number(), EPOLL_CTL_MOD, descriptor, &event) != 0))
        throw std::system_error(errno, std::generic_category(), "A connection cannot be watched");
}

void DescriptorSet::forget(int descriptor) noexcept {
    ::epoll_ctl(set.number(), EPOLL_CTL_DEL, descriptor, nullptr);
}

std::span<const epoll_event> DescriptorSet::look(std::span<epoll_event> room) const {
    const int count = ::epoll_wait(set.number(), room.data(), static_cast<int>(room.size()), 0);
    return room.first(static_cast<std::size_t>(std::max(count, 0)));
}

} // namespace lumarin::service
