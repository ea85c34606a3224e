#pragma once

namespace platform::desktop {

// How a window's translucent parts are shown: cut out, on what is behind, or on a blurred picture of that.
enum class Backdrop { none, plain, blurred };

} // namespace platform::desktop
