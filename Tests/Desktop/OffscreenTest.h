#pragma once

#include <array>

#include <QGuiApplication>
#include <gtest/gtest.h>

namespace platform::desktop {

// A test of what is drawn, with the desktop's fonts and no display.
class OffscreenTest : public testing::Test {
private:
    int argumentCount = 3;
    std::array<std::string, 3> words{"test", "-platform", "offscreen"};
    std::array<char*, 4> arguments{words[0].data(), words[1].data(), words[2].data(), nullptr};
    const QGuiApplication application{argumentCount, arguments.data()};
};

} // namespace platform::desktop
