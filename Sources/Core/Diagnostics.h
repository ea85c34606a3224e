#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace lumarin {

// The facts that support asks for when the gesture does nothing, in one text file. Main thread.
class Diagnostics {
public:
    Diagnostics() = delete;

    // Writes the report to the user's desktop and tells where; nothing if that failed.
    static std::optional<std::filesystem::path> generateReport();

private:
    static std::string buildReport();
};

} // namespace lumarin
