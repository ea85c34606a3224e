#include "Platform/Foundation/Bundle.h"

#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Json.h"
#include "Platform/Foundation/StringsFile.h"

#include <system_error>
#include <utility>

namespace platform {

namespace {

template <typename Key, typename Value>
std::optional<Value> valueIn(const std::map<Key, Value>& map, const Key& key) {
    const auto found = map.find(key);
    if (found == map.end())
        return std::nullopt;
    return found->second;
}

} // namespace

Bundle::Bundle(std::filesystem::path folder, std::filesystem::path ownInfo)
    : path_(std::move(folder)), ownInfo_(std::move(ownInfo)) {}

std::optional<std::filesystem::path> Bundle::pathForResource(const std::string& name,
                                                             const std::string& type) const {
    std::filesystem::path resource = path_ / (name + "." + type);
    std::error_code error;
    if (!std::filesystem::exists(resource, error))
        return std::nullopt;
    return resource;
}

std::string Bundle::localizedString(const std::string& key, const std::string& valueIfMissing,
                                    const std::string& table) const {
    const std::lock_guard lock(mutex_);
    auto found = tables_.find(table);
    if (found == tables_.end()) {
        const std::string bytes = files::contents(path_ / (table + ".strings")).value_or("");
        found = tables_.emplace(table, parseStrings(bytes).value_or(Texts())).first;
    }
    return valueIn(found->second, key).value_or(valueIfMissing);
}

std::optional<std::string> Bundle::info(const std::string& key) const {
    const std::lock_guard lock(mutex_);
    if (!info_) {
        info_.emplace();
        for (const auto& file : {ownInfo_, path_ / "Info.json"})
            info_->merge(decodeStringMembers(files::contents(file).value_or("")).value_or(Texts()));
    }
    return valueIn(*info_, key);
}

bool Bundle::hasSoundOwnInfo() const {
    const auto own = files::read(ownInfo_);
    return own.status == files::ReadStatus::missing || decodeStringMembers(own.bytes);
}

const Bundle& Bundle::bundleAt(const std::filesystem::path& folder) const {
    const std::lock_guard lock(mutex_);
    std::unique_ptr<const Bundle>& bundle = bundles_[folder];
    if (!bundle)
        bundle = std::make_unique<const Bundle>(folder);
    return *bundle;
}

} // namespace platform
