#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <functional>

#include <QAbstractNativeEventFilter>

namespace platform::desktop {

// Sees the programs come and go that do something for the whole display, each told by a selection of that
// kind that it owns: "_NET_WM_CM" for each screen. Main thread.
class OwnerWatch : public QAbstractNativeEventFilter {
public:
    // `changed` is called after the owner came, went or is another one.
    OwnerWatch(const XConnection& x, const std::string& kind, std::function<void()> changed);

    xcb_window_t owner() const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    const XConnection& x;
    const xcb_atom_t selection;
    const std::function<void()> report;
    int selectionEvent = 0;
};

} // namespace platform::desktop
