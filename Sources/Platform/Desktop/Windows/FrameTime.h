#pragma once

#include "Platform/Foundation/Executor.h"

namespace platform::desktop {

// From one frame of an animation to the next.
inline constexpr Duration frameTime =
    std::chrono::duration_cast<Duration>(std::chrono::duration<double>(1.0 / 60));

} // namespace platform::desktop
