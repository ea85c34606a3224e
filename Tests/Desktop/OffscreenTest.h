#pragma once

#include "Desktop/QtProgram.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

namespace platform::desktop {

// A test of what is drawn, with the desktop's fonts and no display.
class OffscreenTest : public testing::Test {
private:
    const tests::QtProgram<QGuiApplication> program{"offscreen"};
};

} // namespace platform::desktop
