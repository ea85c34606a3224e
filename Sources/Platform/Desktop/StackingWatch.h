#pragma once

#include "Platform/Desktop/XConnection.h"

#include <functional>

#include <QAbstractNativeEventFilter>

namespace platform::desktop {

// Tells when other windows may have come before those of a connection. Main thread.
class StackingWatch : public QAbstractNativeEventFilter {
public:
    StackingWatch(const XConnection& x, std::function<void()> changed);

    // While it is of use: every window that moves is news.
    void setWatching(bool isWatching);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    bool isOwn(xcb_window_t window) const;

    const XConnection& x;
    const std::function<void()> report;
    bool watching = false;
};

} // namespace platform::desktop
