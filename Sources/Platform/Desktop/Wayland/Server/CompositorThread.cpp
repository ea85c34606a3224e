#include "Platform/Desktop/Wayland/Server/CompositorThread.h"

#include <memory>

namespace platform::desktop {

// Events and requests keep their order, so the answer comes behind all that the requests brought about.
Task<void> CompositorThread::settled() {
    using namespace std::chrono_literals;
    constexpr auto limit = 2s;
    struct Answer {
        bool came = false;
    };
    const auto answer = std::make_shared<Answer>();
    const WaylandOwned<wl_callback> question(wl_display_sync(wayland.display()));
    static constexpr wl_callback_listener listener{
        [](void* asked, wl_callback*, std::uint32_t) { static_cast<Answer*>(asked)->came = true; }};
    wl_callback_add_listener(question.get(), &listener, answer.get());
    co_await until([answer] { return answer->came; }, limit);
}

} // namespace platform::desktop
