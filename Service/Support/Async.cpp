#include "Service/Support/Async.h"

#include <boost/asio/deferred.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/experimental/parallel_group.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <exception>

namespace lumarin::service {
namespace {

template <typename Waitable, typename What>
asio::awaitable<bool> isReadyBefore(Waitable& waitable, What what,
                                    std::chrono::steady_clock::time_point deadline) {
    asio::steady_timer alarm(co_await asio::this_coro::executor, deadline);
    const auto [order, waited, rang] =
        co_await asio::experimental::make_parallel_group(waitable.async_wait(what, asio::deferred),
                                                         alarm.async_wait(asio::deferred))
            .async_wait(asio::experimental::wait_for_one(), asio::use_awaitable);
    co_return order[0] == 0 && !waited;
}

} // namespace

asio::awaitable<bool> isReady(tcp::socket& socket, tcp::socket::wait_type what,
                              std::chrono::steady_clock::time_point deadline) {
    return isReadyBefore(socket, what, deadline);
}

asio::awaitable<bool> isReadable(asio::posix::stream_descriptor& descriptor,
                                 std::chrono::steady_clock::time_point deadline) {
    return isReadyBefore(descriptor, asio::posix::stream_descriptor::wait_read, deadline);
}

asio::awaitable<void> pause(std::chrono::steady_clock::duration time) {
    asio::steady_timer timer(co_await asio::this_coro::executor, time);
    co_await timer.async_wait(asio::use_awaitable);
}

asio::awaitable<void> giveWay() {
    co_await asio::post(co_await asio::this_coro::executor, asio::use_awaitable);
}

asio::awaitable<void> inBackground(asio::thread_pool& pool, std::function<void()> work) {
    const auto initiate = [&](auto handler) {
        auto guard = asio::make_work_guard(handler);
        asio::post(pool, [&, waiting = std::move(guard), coming = std::move(handler)]() mutable {
            std::exception_ptr failure;
            try {
                work();
            } catch (...) {
                failure = std::current_exception();
            }
            asio::post(waiting.get_executor(),
                       [failure, back = std::move(coming)]() mutable { std::move(back)(failure); });
        });
    };
    co_await asio::async_initiate<const asio::use_awaitable_t<>, void(std::exception_ptr)>(
        initiate, asio::use_awaitable);
}

} // namespace lumarin::service
