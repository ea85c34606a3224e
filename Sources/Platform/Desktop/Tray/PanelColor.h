#pragma once

#include "Platform/Desktop/Tray/DesktopPanel.h"

namespace platform::desktop {

// The colour to draw an icon in that has that place on the screen, or stands somewhere in the desktop's panel
// if the place is empty. The display's own tray, if it is in that, is asked first; else it is seen from the
// panel's own picture whether that is dark; where there is no panel to be seen, the palette decides. Main
// thread.
QColor colorOnPanel(const DesktopPanel& panel, const QRect& icon);

} // namespace platform::desktop
