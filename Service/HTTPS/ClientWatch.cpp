#include "Service/HTTPS/ClientWatch.h"

#include <boost/asio/experimental/awaitable_operators.hpp>

namespace lumarin::service {

ClientWatch::ClientWatch(tcp::socket& client) : readiness(client.get_executor(), ends.descriptor()) {
    ends.watch(client.native_handle(), EPOLLRDHUP | EPOLLHUP | EPOLLERR);
}

asio::awaitable<bool> ClientWatch::hasGoneBefore(asio::awaitable<void> until) {
    using namespace asio::experimental::awaitable_operators;
    const auto first = co_await (gone() || std::move(until));
    co_return first.index() == 0;
}

asio::awaitable<void> ClientWatch::gone() {
    co_await isReadable(readiness, std::chrono::steady_clock::time_point::max());
}

} // namespace lumarin::service
