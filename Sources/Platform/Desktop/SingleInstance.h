#pragma once

#include <filesystem>

namespace platform::desktop {

// Holds the place of the user's one running copy of the program, until it ends in whatever way.
class SingleInstance {
public:
    // The place is a file in `folder`, which is created.
    explicit SingleInstance(const std::filesystem::path& folder);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // Whether another copy has the place. Where no file can be made, nobody knows of another.
    bool isTaken() const { return taken; }

private:
    int file;
    bool taken;
};

} // namespace platform::desktop
