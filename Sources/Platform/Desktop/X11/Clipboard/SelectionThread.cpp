#include "Platform/Desktop/X11/Clipboard/SelectionThread.h"

#include <algorithm>
#include <system_error>

#include <cerrno>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

constexpr auto clockProperty = "LUMARIN_CLOCK";

} // namespace

SelectionThread::Wakeup::Wakeup() : fd(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

SelectionThread::Wakeup::~Wakeup() {
    close(fd);
}

void SelectionThread::Wakeup::signal() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] auto written = write(fd, &one, sizeof one);
}

void SelectionThread::Wakeup::clear() const {
    std::uint64_t count = 0;
    [[maybe_unused]] auto taken = read(fd, &count, sizeof count);
}

SelectionThread::SelectionThread()
    : clockWindow(connection.makeHiddenWindow(XCB_EVENT_MASK_PROPERTY_CHANGE)) {}

SelectionThread::~SelectionThread() {
    stop();
}

void SelectionThread::start(std::function<void(const xcb_generic_event_t&)> eventHandler) {
    handler = std::move(eventHandler);
    thread = std::thread([this] { run(); });
}

void SelectionThread::stop() {
    if (!thread.joinable())
        return;
    post([this] { ending = true; });
    thread.join();
}

void SelectionThread::post(std::function<void()> work) {
    postAfter(Duration::zero(), std::move(work));
}

void SelectionThread::postAfter(Duration delay, std::function<void()> work) {
    {
        std::lock_guard lock(mutex);
        queue.emplace(std::chrono::steady_clock::now() + delay, std::move(work));
    }
    wakeup.signal();
}

SelectionThread::Condition SelectionThread::until(std::function<bool()> condition, Moment deadline) {
    return {*this, std::move(condition), deadline};
}

SelectionThread::Condition SelectionThread::until(std::function<bool()> condition, Duration limit) {
    return until(std::move(condition), std::chrono::steady_clock::now() + limit);
}

Task<xcb_timestamp_t> SelectionThread::serverTime() {
    clockTime = 0;
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, clockWindow, connection.atom(clockProperty),
                        XCB_ATOM_INTEGER, 32, 0, nullptr);
    co_await until([this] { return clockTime != 0; }, std::chrono::seconds(5));
    co_return clockTime;
}

void SelectionThread::run() {
    while (!ending) {
        bool active = work();
        active = dispatch() || active;
        active = resumeWaiting() || active;
        if (!active)
            rest();
    }
    over = true;
    while (resumeWaiting() || work())
        ;
}

// Runs what is due. Not more than was due at first, so that events have their turn.
bool SelectionThread::work() {
    std::vector<std::function<void()>> due;
    {
        std::lock_guard lock(mutex);
        auto end = queue.upper_bound(std::chrono::steady_clock::now());
        for (auto entry = queue.begin(); entry != end; ++entry)
            due.push_back(std::move(entry->second));
        queue.erase(queue.begin(), end);
    }
    for (auto& piece : due)
        piece();
    return !due.empty();
}

bool SelectionThread::dispatch() {
    if (over)
        return false;
    bool any = false;
    while (XOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        any = true;
        auto changed = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY && changed->window == clockWindow)
            clockTime = changed->time;
        else
            handler(*event);
    }
    over = xcb_connection_has_error(connection) != 0;
    return any || over;
}

bool SelectionThread::resumeWaiting() {
    auto first = std::stable_partition(waiting.begin(), waiting.end(),
                                       [](const Condition* wait) { return !wait->isOver(); });
    std::vector<Condition*> done(first, waiting.end());
    waiting.erase(first, waiting.end());
    for (auto* wait : done)
        wait->task.resume();
    return !done.empty();
}

void SelectionThread::rest() {
    connection.flush();
    std::optional<Moment> next;
    {
        std::lock_guard lock(mutex);
        if (!queue.empty())
            next = queue.begin()->first;
    }
    for (const auto* wait : waiting)
        next = next ? std::min(*next, wait->deadline) : wait->deadline;

    timespec timeout{};
    if (next) {
        auto left = std::max(Duration::zero(), Duration(*next - std::chrono::steady_clock::now()));
        timeout.tv_sec = static_cast<time_t>(left / std::chrono::seconds(1));
        timeout.tv_nsec = static_cast<long>((left % std::chrono::seconds(1)).count());
    }
    // A broken connection would always be readable.
    pollfd sources[] = {{wakeup.descriptor(), POLLIN, 0},
                        {over ? -1 : xcb_get_file_descriptor(connection), POLLIN, 0}};
    ppoll(sources, 2, next ? &timeout : nullptr, nullptr);
    wakeup.clear();
}

} // namespace platform::desktop
