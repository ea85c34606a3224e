#include "Platform/Foundation/UserDefaults.h"

#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Json.h"

#include <exception>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace platform {

namespace {

// Moves a damaged file out of the way, beside those that were damaged before it.
bool setAside(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::path aside = file;
    aside += ".damaged";
    for (int number = 2; std::filesystem::exists(std::filesystem::symlink_status(aside, error)); ++number) {
        aside = file;
        aside += ".damaged-" + std::to_string(number);
    }
    std::filesystem::rename(file, aside, error);
    return !error;
}

} // namespace

UserDefaults::UserDefaults(std::filesystem::path file) : file_(std::move(file)) {
    load();
}

std::optional<std::string> UserDefaults::string(const std::string& key) const {
    const std::lock_guard lock(mutex_);
    load();
    const auto found = values_.find(key);
    if (found == values_.end())
        return std::nullopt;
    return found->second;
}

void UserDefaults::set(const std::string& key, const std::string& value) {
    const std::lock_guard lock(mutex_);
    load();
    values_.insert_or_assign(key, value);
    save();
}

void UserDefaults::remove(const std::string& key) {
    const std::lock_guard lock(mutex_);
    load();
    if (values_.erase(key) > 0)
        save();
}

UserDefaults::Stamp UserDefaults::stamp() const {
    struct stat facts {};
    if (stat(file_.c_str(), &facts) != 0)
        return {};
    return {facts.st_ino, facts.st_size,
            std::int64_t{facts.st_mtim.tv_sec} * 1'000'000'000 + facts.st_mtim.tv_nsec};
}

void UserDefaults::load() const {
    // Before it is read: what is written meanwhile is read the next time.
    const auto present = stamp();
    if (loaded_ == present)
        return;
    loaded_ = present;
    values_.clear();
    mayWrite_ = true;
    const files::ReadResult result = files::read(file_);
    if (result.status == files::ReadStatus::missing)
        return;
    if (result.status == files::ReadStatus::unreadable) {
        mayWrite_ = false;
    } else if (auto values = decodeStringDictionary(result.bytes)) {
        values_ = *std::move(values);
    } else {
        mayWrite_ = setAside(file_);
    }
}

void UserDefaults::save() {
    if (!mayWrite_)
        return;
    files::createPrivateDirectory(file_.parent_path());
    try {
        files::writeAtomically(file_, encodeStringDictionary(values_));
        loaded_ = stamp();
    } catch (const std::exception&) {
        // A disk that is full or read-only must not stop the program: the value holds for this run.
    }
}

} // namespace platform
