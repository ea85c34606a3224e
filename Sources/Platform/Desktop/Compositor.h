#pragma once

#include "Platform/Desktop/XConnection.h"

#include <functional>

#include <QAbstractNativeEventFilter>

namespace platform::desktop {

// How a window's translucent parts are shown: cut out, on what is behind, or on a blurred picture of that.
enum class Backdrop { none, plain, blurred };

// The program that puts windows together on the screen, which may come and go. Main thread.
class Compositor : public QAbstractNativeEventFilter {
public:
    // `changed` is called after it came or went.
    Compositor(const XConnection& x, std::function<void()> changed);

    Backdrop backdrop() const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    const XConnection& x;
    const std::function<void()> report;
    xcb_atom_t selection;
    int selectionEvent = 0;
};

} // namespace platform::desktop
