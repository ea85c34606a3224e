#include "Service/ClientWatch.h"

#include <cerrno>
#include <sys/epoll.h>
#include <system_error>

namespace lumarin::service {

ClientWatch::ClientWatch(int socket, const Signal& abandon) : events(::epoll_create1(EPOLL_CLOEXEC)) {
    // What the client sends in the meantime, its next request perhaps, is none of these.
    epoll_event closed{.events = EPOLLRDHUP | EPOLLHUP | EPOLLERR, .data = {}};
    epoll_event raised{.events = EPOLLIN, .data = {}};
    if (events.number() < 0 || ::epoll_ctl(events.number(), EPOLL_CTL_ADD, socket, &closed) != 0
        || ::epoll_ctl(events.number(), EPOLL_CTL_ADD, abandon.descriptor(), &raised) != 0)
        throw std::system_error(errno, std::generic_category(), "The client cannot be watched");
}

} // namespace lumarin::service
