#pragma once

#include "Platform/Desktop/X11/Server/XConnection.h"

#include <QColor>
#include <QRect>

namespace platform::desktop {

// The colour to draw an icon in that has that place on the screen, or stands somewhere in the desktop's panel
// if the place is empty. The classic tray, if it is one, is asked first; else it is seen from the panel's own
// picture whether that is dark; where there is no panel to be seen, the palette decides. Main thread.
QColor colorOnPanel(const XConnection& x, xcb_window_t classicTray, const QRect& icon);

} // namespace platform::desktop
