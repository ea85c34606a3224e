#include "Platform/Desktop/X11/Keys/DesktopKeyboard.h"

#include "Platform/Desktop/X11/Keys/ServerKeyMap.h"
#include "Platform/Desktop/X11/Keys/TrustObstacle.h"

#include <atomic>

namespace platform::desktop {

namespace {

// Where a tap's events go. Read on the watch's thread.
using Destination = std::atomic<RunLoop*>;

// What is done with an event, on the thread it is handed to. Only its owner and a call under way keep it
// alive.
using Receiver = std::function<void(const KeyEvent&)>;

class TapSource : public RunLoopSource {
public:
    TapSource(std::shared_ptr<Destination> tapped, RunLoop& runLoop) : destination(std::move(tapped)) {
        *destination = &runLoop;
    }
    ~TapSource() override { *destination = nullptr; }
    TapSource(const TapSource&) = delete;
    TapSource& operator=(const TapSource&) = delete;

private:
    std::shared_ptr<Destination> destination;
};

class FunctionKeyTap : public EventTap {
public:
    FunctionKeyTap(KeyWatch& keyWatch, EventMask events, Callback callback)
        : watch(keyWatch),
          receiver(
              std::make_shared<Receiver>([this, events, report = std::move(callback)](const KeyEvent& event) {
                  // The key was taken from the applications when it was pressed; there is no giving it back.
                  if (isEnabled && (events & maskOf(event.type)) != 0)
                      static_cast<void>(report(event.type, event));
              })) {}
    ~FunctionKeyTap() override {
        if (hasKey)
            watch.ungrabFunctionKey();
    }
    FunctionKeyTap(const FunctionKeyTap&) = delete;
    FunctionKeyTap& operator=(const FunctionKeyTap&) = delete;

    // False if another program has the key.
    bool takeKey() {
        auto forward = [to = destination, weakReceiver = std::weak_ptr(receiver)](const KeyEvent& event) {
            if (auto* runLoop = to->load())
                runLoop->post([weakReceiver, event] {
                    if (auto alive = weakReceiver.lock())
                        (*alive)(event);
                });
        };
        hasKey = watch.grabFunctionKey(std::make_shared<const KeyWatch::Listener>(std::move(forward)));
        return hasKey;
    }

    std::unique_ptr<RunLoopSource> addTo(RunLoop& runLoop) override {
        return std::make_unique<TapSource>(destination, runLoop);
    }
    void enable() override { isEnabled = true; }

private:
    KeyWatch& watch;
    std::shared_ptr<Destination> destination = std::make_shared<Destination>(nullptr);
    std::shared_ptr<Receiver> receiver;
    bool isEnabled = false;
    bool hasKey = false;
};

class KeyDownMonitor : public EventMonitor {
public:
    KeyDownMonitor(KeyWatch& keyWatch, RunLoop& runLoop, EventMask events, Receiver handler)
        : watch(keyWatch), receiver(std::make_shared<Receiver>(std::move(handler))) {
        auto forward = [&runLoop, events, weakReceiver = std::weak_ptr(receiver)](const KeyEvent& event) {
            if ((events & maskOf(event.type)) == 0)
                return;
            runLoop.post([weakReceiver, event] {
                if (auto alive = weakReceiver.lock())
                    (*alive)(event);
            });
        };
        listener = std::make_shared<const KeyWatch::Listener>(std::move(forward));
        watch.addMonitor(listener);
    }
    ~KeyDownMonitor() override { watch.removeMonitor(listener); }
    KeyDownMonitor(const KeyDownMonitor&) = delete;
    KeyDownMonitor& operator=(const KeyDownMonitor&) = delete;

private:
    KeyWatch& watch;
    std::shared_ptr<Receiver> receiver;
    std::shared_ptr<const KeyWatch::Listener> listener;
};

} // namespace

std::unique_ptr<EventTap> DesktopKeyboard::createEventTap(EventMask events, EventTap::Callback callback) {
    // Within a Wayland session the server has all that it takes, but hears only of its own windows' keys.
    if (trustObstacle(display))
        return nullptr;
    auto tap = std::make_unique<FunctionKeyTap>(watch, events, std::move(callback));
    return tap->takeKey() ? std::move(tap) : nullptr;
}

std::unique_ptr<EventMonitor>
DesktopKeyboard::addGlobalMonitor(EventMask events, std::function<void(const KeyEvent&)> handler) {
    return std::make_unique<KeyDownMonitor>(watch, mainLoop, events, std::move(handler));
}

// The whole combination is typed with its key-down event; the key-up event adds nothing.
Task<void> DesktopKeyboard::post(KeyEvent event) {
    co_await ignoreCancellation();
    if (auto map = event.type == EventType::keyDown ? watch.keyMap() : nullptr)
        co_await poster.type(event, map, currentGroup(display));
}

} // namespace platform::desktop
