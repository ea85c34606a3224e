#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/thread_pool.hpp>
#include <chrono>
#include <functional>

// The few ways in which the service's coroutines wait. What a coroutine waits for needs a name of its own
// there: within a condition, GCC 12 lays out the coroutine's frame wrongly.
namespace lumarin::service {

namespace asio = boost::asio;
using asio::ip::tcp;

// Whether it is ready by `deadline`. May report what has been read meanwhile: an operation that would block
// is to be waited for again.
asio::awaitable<bool> isReady(tcp::socket& socket, tcp::socket::wait_type what,
                              std::chrono::steady_clock::time_point deadline);
asio::awaitable<bool> isReadable(asio::posix::stream_descriptor& descriptor,
                                 std::chrono::steady_clock::time_point deadline);

asio::awaitable<void> pause(std::chrono::steady_clock::duration time);

// Lets all others that are ready have their turn.
asio::awaitable<void> giveWay();

// Runs what would hold up everybody else on a thread of the pool, and comes back. Throws what `work` throws.
// Cannot be cancelled.
asio::awaitable<void> inBackground(asio::thread_pool& pool, std::function<void()> work);

} // namespace lumarin::service
