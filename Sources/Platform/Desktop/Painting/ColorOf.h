#pragma once

#include "Platform/Kit/Color.h"

#include <QColor>

namespace platform::desktop {

inline QColor colorOf(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

} // namespace platform::desktop
