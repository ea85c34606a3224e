#include "Platform/Updates/FeedHistory.h"

#include "Platform/Updates/UpdateError.h"
#include "Platform/Updates/Version.h"

#include <algorithm>

namespace platform {
namespace {

constexpr const char* defaultsKey = "Lumarin.updateFeed";
constexpr const char* signedMark = "signed";
constexpr const char* unsignedMark = "unsigned";
constexpr const char* nothingListed = "none";

std::string takeWord(std::string& text) {
    const auto end = std::min(text.find(' '), text.size());
    std::string word = text.substr(0, end);
    text.erase(0, end + 1);
    return word;
}

} // namespace

// The value is "signed 12 https://updates.example/appcast.xml 1.2". Earlier programs left the name out.
FeedHistory::FeedHistory(UserDefaults& keptIn, const std::string& feedAddress)
    : defaults(keptIn), address(feedAddress) {
    std::string value = defaults.string(defaultsKey).value_or("");
    const std::string mark = takeWord(value);
    const std::string newest = takeWord(value);
    // Another feed has a history of its own.
    if (takeWord(value) != address)
        return;
    wasSigned = mark == signedMark;
    if (version::isValid(newest))
        newestVersion = newest;
    newestName = value.empty() ? newest : value;
}

void FeedHistory::accept(bool isSigned, const std::vector<AppcastItem>& items) {
    if (wasSigned && !isSigned)
        throw UpdateError("updates.error.unsigned_feed");
    const auto newest =
        std::ranges::max_element(items, [](const AppcastItem& left, const AppcastItem& right) {
            return std::is_lt(version::compare(left.versionString, right.versionString));
        });
    const std::string listed = newest == items.end() ? std::string() : newest->versionString;
    if (!newestVersion.empty() && (listed.empty() || std::is_lt(version::compare(listed, newestVersion))))
        throw UpdateError("updates.error.older_feed", newestName);
    std::string value = isSigned ? signedMark : unsignedMark;
    value += " " + (listed.empty() ? nothingListed : listed) + " " + address;
    if (!listed.empty())
        value += " " + newest->displayVersionString;
    if (defaults.string(defaultsKey) != value)
        defaults.set(defaultsKey, value);
}

} // namespace platform
