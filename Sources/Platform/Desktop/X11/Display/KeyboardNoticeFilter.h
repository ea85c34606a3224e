#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <QAbstractNativeEventFilter>

namespace platform::desktop {

// Keeps from Qt the news of the keyboard's map while no window of the program has the keyboard. The server
// repeats them whenever another device types than before, so with every gesture, and Qt then asks it for the
// whole map anew, in hundreds of round trips on the main thread. Main thread.
class KeyboardNoticeFilter : public QAbstractNativeEventFilter {
public:
    explicit KeyboardNoticeFilter(const XConnection& display);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    int keyboardEvent = 0;
};

} // namespace platform::desktop
