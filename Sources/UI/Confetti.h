#pragma once

#include "Platform/Kit/View.h"

#include <random>

namespace lumarin {

// Throws a burst of confetti over a page of the onboarding, once. What has fallen stays in the page,
// invisible, until that goes. Main thread.
void startConfetti(platform::View& page, std::mt19937& random);

} // namespace lumarin
