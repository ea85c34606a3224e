#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace platform {

// Small values by key that outlive the program, in one JSON file. For any thread. A change is written at
// once; when it cannot be written it holds for this run. A file that cannot be read is left alone, a
// damaged one is renamed (".damaged" is added to its name) and a new one begun.
class UserDefaults {
public:
    explicit UserDefaults(std::filesystem::path file);

    std::optional<std::string> string(const std::string& key) const;
    void set(const std::string& key, const std::string& value);
    void remove(const std::string& key);

private:
    void load();
    void save() const;

    std::filesystem::path file_;
    mutable std::mutex mutex_;
    std::map<std::string, std::string> values_;
    bool mayWrite_ = true;
};

} // namespace platform
