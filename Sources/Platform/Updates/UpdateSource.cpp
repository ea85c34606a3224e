#include "Platform/Updates/UpdateSource.h"

#include "Platform/Foundation/Dates.h"
#include "Platform/Host.h"
#include "Platform/Updates/Appcast.h"
#include "Platform/Updates/FeedHistory.h"
#include "Platform/Updates/PackageDownload.h"
#include "Platform/Updates/SecureAddress.h"
#include "Platform/Updates/UpdateError.h"
#include "Platform/Updates/Version.h"

namespace platform {
namespace {

constexpr std::size_t maximumFeedLength = std::size_t{2} << 20U;

bool isNewer(const std::string& one, const std::string& other) {
    return std::is_gt(version::compare(one, other));
}

Task<std::string> fetchFeed(std::string url, std::shared_ptr<HTTPSession> session) {
    HTTPRequest request;
    request.url = std::move(url);
    request.maximumBodyLength = maximumFeedLength;
    auto answer = co_await session->bytes(std::move(request));
    if (answer.response.status != 200)
        throw UpdateError("updates.error.status", std::to_string(answer.response.status.value_or(0)));
    co_return co_await answer.readAll();
}

bool canRunHere(const AppcastItem& item, const std::string& systemVersion) {
    const auto isRefused = [&](const std::string& limit, std::weak_ordering order) {
        return !systemVersion.empty() && version::isValid(limit)
               && version::compare(systemVersion, limit) == order;
    };
    return !isRefused(item.minimumSystemVersion, std::weak_ordering::less)
           && !isRefused(item.maximumSystemVersion, std::weak_ordering::greater);
}

// Why the item's package cannot be offered; none if it can.
const char* faultOf(const AppcastItem& item) {
    if (item.signature.empty())
        return "updates.error.unsigned_item";
    if (item.contentLength == 0 || item.contentLength > maximumPackageLength)
        return "updates.error.length";
    if (!isSecureAddress(item.fileURL))
        return "updates.error.insecure_item";
    return nullptr;
}

AppcastItem choose(const std::vector<AppcastItem>& items, const UpdateSource& source) {
    const AppcastItem* best = nullptr;
    const AppcastItem* faulty = nullptr;
    const AppcastItem* unfit = nullptr;
    for (const auto& item : items) {
        if (!isNewer(item.versionString, source.runningVersion))
            continue;
        const bool fits = canRunHere(item, source.systemVersion);
        const AppcastItem*& place = !fits ? unfit : faultOf(item) ? faulty : best;
        if (!place || isNewer(item.versionString, place->versionString))
            place = &item;
    }
    if (best)
        return *best;
    if (faulty)
        throw UpdateError(faultOf(*faulty), faulty->displayVersionString);
    if (unfit)
        throw NoUpdate("updates.none.system", unfit->displayVersionString);
    throw NoUpdate("updates.none.newest", source.displayVersion);
}

// Nothing of the feed is read before its signature is. That binds each version to its package, by the length
// and the signature that stand beside it.
std::vector<AppcastItem> readFeed(const std::string& bytes, const UpdateSource& source,
                                  const std::string& language) {
    const SignedFeed feed = splitSignature(bytes);
    // A network that wants people to sign in first answers with a page of its own.
    if (!feed.signature)
        throw UpdateError(bytes.find("<rss") == std::string::npos ? "updates.error.malformed"
                                                                  : "updates.error.unsigned_feed");
    if (!source.publicKey.verifies(feed.content, decodeBase64(*feed.signature).value_or("")))
        throw UpdateError("updates.error.feed_signature");
    auto appcast = parseAppcast(feed.content, language);
    const std::string now = iso8601(Host::current().mainRunLoop().date());
    if (appcast.expires.empty())
        throw UpdateError("updates.error.undated_feed");
    if (appcast.expires < now)
        throw UpdateError("updates.error.expired_feed", appcast.expires.substr(0, appcast.expires.find('T')));
    refuseOlderFeed(Host::current().userDefaults(), source.feedURL, appcast.signedAt, now);
    return std::move(appcast.items);
}

} // namespace

UpdateSource UpdateSource::current() {
    const Bundle& bundle = Host::current().mainBundle();
    UpdateSource source;
    source.feedURL = bundle.info("SUFeedURL").value_or("");
    if (source.feedURL.empty())
        throw UpdateError("updates.error.no_feed");
    if (!isSecureAddress(source.feedURL))
        throw UpdateError("updates.error.insecure_feed");
    const auto key = PublicKey::decode(bundle.info("SUPublicEDKey").value_or(""));
    if (!key)
        throw UpdateError("updates.error.no_key");
    source.publicKey = *key;
    source.runningVersion = bundle.info("CFBundleVersion").value_or("");
    if (!version::isValid(source.runningVersion))
        throw UpdateError("updates.error.no_version");
    source.displayVersion = bundle.info("CFBundleShortVersionString").value_or(source.runningVersion);
    source.systemVersion = version::findIn(Host::current().systemFacts().operatingSystemVersion);
    return source;
}

Task<AppcastItem> findUpdate(UpdateSource source, std::shared_ptr<HTTPSession> session,
                             std::string language) {
    co_await resumeOn(Host::current().backgroundExecutor());
    const std::string bytes = co_await fetchFeed(source.feedURL, session);
    co_return choose(readFeed(bytes, source, language), source);
}

} // namespace platform
