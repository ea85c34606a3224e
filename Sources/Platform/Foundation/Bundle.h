#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace platform {

// A folder of resources: files, string tables and the texts of Info.json. For any thread. Tables are read
// once, when first asked for.
class Bundle {
public:
    // What stands in the file `ownInfo`, the user's, goes before what the folder's Info.json has.
    explicit Bundle(std::filesystem::path folder, std::filesystem::path ownInfo = {});

    const std::filesystem::path& path() const { return path_; }

    // The file or folder `name`.`type` in this one, none if there is no such thing.
    std::optional<std::filesystem::path> pathForResource(const std::string& name,
                                                         const std::string& type) const;

    // The text of `key` in the table `<table>.strings`; a table that cannot be read has no texts.
    std::string localizedString(const std::string& key, const std::string& valueIfMissing,
                                const std::string& table = "Localizable") const;

    // The member `key` of the user's file or of Info.json, none if it is missing or not a string.
    std::optional<std::string> info(const std::string& key) const;

    // Whether there is no file of the user's own, or one that can be used.
    bool hasSoundOwnInfo() const;

    // The bundle of another folder, the same one whenever the same path is asked for. It lives as long as
    // this bundle.
    const Bundle& bundleAt(const std::filesystem::path& folder) const;

private:
    using Texts = std::map<std::string, std::string>;

    std::filesystem::path path_;
    std::filesystem::path ownInfo_;
    mutable std::mutex mutex_;
    mutable std::map<std::string, Texts> tables_;
    mutable std::optional<Texts> info_;
    mutable std::map<std::filesystem::path, std::unique_ptr<const Bundle>> bundles_;
};

} // namespace platform
