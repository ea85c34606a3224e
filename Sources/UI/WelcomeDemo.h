#pragma once

#include "Platform/Foundation/Timer.h"
#include "Platform/Kit/View.h"

namespace lumarin {

// Shows a gesture without words in a page of the onboarding, over and over until the timer is dropped: a text
// is typed, the key is held, and the translation is typed beside it. Main thread.
platform::Timer startWelcomeDemo(platform::View& page);

} // namespace lumarin
