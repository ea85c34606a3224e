#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// Whole files, read and written in one go. For any thread. Only regular files (or links to them) are
// touched, so nothing here ever waits for the other end of a pipe or a device. New files are the user's
// alone (0600), and so are new folders (0700).
namespace platform::files {

// The largest file that is read, in bytes.
inline constexpr std::size_t maximumFileSize = std::size_t{64} << 20U;

enum class ReadStatus {
    read,
    missing,
    unreadable, // there is something, but not a file that could be read, or one that is too large
};

struct ReadResult {
    ReadStatus status = ReadStatus::missing;
    std::string bytes;
};

ReadResult read(const std::filesystem::path& path);

// What `read` gives, for callers to whom every failure is the same.
std::optional<std::string> contents(const std::filesystem::path& path);

// Puts a new file in the place of the old one, so that a reader sees either of them and never a part. A
// link is followed and stays. Throws std::system_error; the old file is then untouched.
void writeAtomically(const std::filesystem::path& path, std::string_view bytes);

// Adds to the end of the file with a single write, so that entries of several threads and processes stay
// whole. Creates the file, but not its folder. False on failure; a part that was added is taken back.
bool append(const std::filesystem::path& path, std::string_view bytes);

// Writes the file anew in place. Creates the file, but not its folder. False on failure.
bool replace(const std::filesystem::path& path, std::string_view bytes);

// Creates the folder and those above it as far as they are missing. Failures are ignored.
void createPrivateDirectory(const std::filesystem::path& path);

} // namespace platform::files
