#pragma once

#include "Platform/Desktop/X11/Keys/KeyPoster.h"
#include "Platform/Desktop/X11/Keys/KeyWatch.h"
#include "Platform/Input/Keyboard.h"

namespace platform::desktop {

// The keys of an X11 session. Fn is the key of that name, or else Right Control; Command is Control.
class DesktopKeyboard : public Keyboard {
public:
    // `mainRunLoop` is where monitors are called. A key that is lost to another program is logged.
    DesktopKeyboard(const XConnection& x, RunLoop& mainRunLoop, PostedKeys& postedKeys, LogSink log)
        : display(x),
          mainLoop(mainRunLoop),
          injector(keyEvents, x),
          watch(keyEvents, injector, postedKeys, std::move(log)),
          poster(x, injector, postedKeys) {}

    std::unique_ptr<EventTap> createEventTap(EventMask events, EventTap::Callback callback) override;
    std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask events,
                                                   std::function<void(const KeyEvent&)> handler) override;
    Task<void> post(KeyEvent event) override;

private:
    const XConnection& display;
    RunLoop& mainLoop;
    // A thread waits on it, so what is asked for on it takes longer.
    const XConnection keyEvents;
    KeyInjector injector;
    KeyWatch watch;
    KeyPoster poster;
};

} // namespace platform::desktop
