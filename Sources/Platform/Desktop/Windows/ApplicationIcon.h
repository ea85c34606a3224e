#pragma once

#include "Platform/Foundation/Bundle.h"

#include <QIcon>

namespace platform::desktop {

// What windows bear in their frames and in lists of windows; drawn when it is first needed.
inline QIcon applicationIcon(const Bundle& bundle) {
    const auto drawing = bundle.pathForResource("lumarin", "svg");
    return drawing ? QIcon(QString::fromStdString(drawing->string())) : QIcon();
}

} // namespace platform::desktop
