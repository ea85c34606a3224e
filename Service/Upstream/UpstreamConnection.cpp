#include "Service/Upstream/UpstreamConnection.h"

#include <array>
#include <new>
#include <system_error>

namespace lumarin::service {

UpstreamConnection::UpstreamConnection() : multi(curl_multi_init()) {
    if (!multi)
        throw std::bad_alloc();
    curl_multi_setopt(multi.get(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi.get(), CURLMOPT_SOCKETFUNCTION, &onSocket);
    curl_multi_setopt(multi.get(), CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(multi.get(), CURLMOPT_TIMERFUNCTION, &onTimer);
}

std::optional<CURLcode> UpstreamConnection::perform() {
    int running = 0;
    if (Clock::now() >= timer) {
        timer = Clock::time_point::max(); // Set anew meanwhile, perhaps.
        curl_multi_socket_action(multi.get(), CURL_SOCKET_TIMEOUT, 0, &running);
    }
    std::array<epoll_event, 4> room;
    for (const epoll_event& event : sockets.look(room)) {
        const int what = ((event.events & EPOLLIN) != 0 ? CURL_CSELECT_IN : 0)
                         | ((event.events & EPOLLOUT) != 0 ? CURL_CSELECT_OUT : 0)
                         | ((event.events & (EPOLLERR | EPOLLHUP)) != 0 ? CURL_CSELECT_ERR : 0);
        curl_multi_socket_action(multi.get(), event.data.fd, what, &running);
    }
    std::optional<CURLcode> result;
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi.get(), &left))
        result = message->data.result;
    return result;
}

int UpstreamConnection::onSocket(CURL*, curl_socket_t socket, int what, void* self, void*) noexcept {
    DescriptorSet& sockets = static_cast<UpstreamConnection*>(self)->sockets;
    if (what == CURL_POLL_REMOVE) {
        sockets.forget(socket);
        return 0;
    }
    const std::uint32_t events =
        ((what & CURL_POLL_IN) != 0 ? EPOLLIN : 0U) | ((what & CURL_POLL_OUT) != 0 ? EPOLLOUT : 0U);
    try {
        sockets.watch(socket, events);
        return 0;
    } catch (const std::system_error&) {
        return -1; // Fails the transfer.
    }
}

int UpstreamConnection::onTimer(CURLM*, long milliseconds, void* self) noexcept {
    static_cast<UpstreamConnection*>(self)->timer =
        milliseconds < 0 ? Clock::time_point::max() : Clock::now() + std::chrono::milliseconds(milliseconds);
    return 0;
}

} // namespace lumarin::service
