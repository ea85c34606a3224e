#pragma once

#include <string>

namespace lumarin {

// The random identifier by which the translation service knows this installation.
class DeviceID {
public:
    DeviceID() = delete;

    // Read anew each time; created and stored at the first. Any thread.
    static std::string current();
};

} // namespace lumarin
