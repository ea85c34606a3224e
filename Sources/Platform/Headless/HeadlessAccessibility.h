#pragma once

#include "Platform/Accessibility.h"

#include <vector>

namespace platform::headless {

// What a screen reader has been told, the latest last, and a desktop's wish that a test sets.
class HeadlessAccessibility : public Accessibility {
public:
    bool reducesMotion = false;
    std::vector<std::string> announced;

    bool shouldReduceMotion() override { return reducesMotion; }
    void announce(const std::string& text) override { announced.push_back(text); }
};

} // namespace platform::headless
