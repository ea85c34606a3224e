#include "Service/Engine/ClientWatch.h"

#include <cerrno>
#include <sys/epoll.h>
#include <system_error>

namespace lumarin::service {

ClientWatch::ClientWatch(const Waiting& waiting) : events(::epoll_create1(EPOLL_CLOEXEC)) {
    // What the client sends in the meantime, its next request perhaps, is none of these.
    watch(waiting.socket, EPOLLRDHUP | EPOLLHUP | EPOLLERR);
    watch(waiting.abandon, EPOLLIN);
}

bool ClientWatch::hasGone() const {
    epoll_event event{};
    return ::epoll_wait(events.number(), &event, 1, 0) > 0;
}

void ClientWatch::watch(int descriptor, std::uint32_t what) const {
    epoll_event event{.events = what, .data = {}};
    if (descriptor >= 0 && ::epoll_ctl(events.number(), EPOLL_CTL_ADD, descriptor, &event) != 0)
        throw std::system_error(errno, std::generic_category(), "The client cannot be watched");
}

} // namespace lumarin::service
