#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace platform {

// Small values by key that outlive the program, in one JSON file. For any thread. A change is written at
// once; when it cannot be written it holds for this run. What others change in the file is seen at the next
// call. A file that cannot be read is left alone, a damaged one is renamed (".damaged" is added to its name)
// and a new one begun.
class UserDefaults {
public:
    explicit UserDefaults(std::filesystem::path file);

    std::optional<std::string> string(const std::string& key) const;
    void set(const std::string& key, const std::string& value);
    void remove(const std::string& key);

private:
    // What tells one content of the file from another.
    struct Stamp {
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t nanoseconds = 0;

        bool operator==(const Stamp&) const = default;
    };

    Stamp stamp() const;
    void load() const;
    void save();

    std::filesystem::path file_;
    mutable std::mutex mutex_;
    // As of when the file was as `loaded_` says.
    mutable std::map<std::string, std::string> values_;
    mutable std::optional<Stamp> loaded_;
    mutable bool mayWrite_ = true;
};

} // namespace platform
