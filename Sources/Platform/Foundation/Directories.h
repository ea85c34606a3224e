#pragma once

#include <filesystem>
#include <optional>

namespace platform {

// The places a host gives the program. None of them needs to exist.
struct Directories {
    std::filesystem::path applicationSupport;
    std::optional<std::filesystem::path> desktop;
    std::filesystem::path configuration;
    std::filesystem::path downloads;
    std::filesystem::path executable; // the program file itself
    std::filesystem::path resources;
    // Where applications are installed for all users.
    std::filesystem::path applications = "/Applications";
};

} // namespace platform
