#pragma once

#include <csignal>
#include <filesystem>

namespace platform::desktop {

// Holds the place of the user's one running copy of the program, until it ends in whatever way.
class SingleInstance {
public:
    // The signal of a call. Who does not heed it is not harmed.
    static constexpr int call = SIGURG;

    // The place is a file in `folder`, which is created.
    explicit SingleInstance(const std::filesystem::path& folder);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // Whether another copy has the place. Where no file can be made, nobody knows of another.
    bool isTaken() const { return taken; }

    // Tells the copy that has the place that this one was started. False where it cannot be told.
    bool callOwner() const;

private:
    int file;
    bool taken;
};

} // namespace platform::desktop
