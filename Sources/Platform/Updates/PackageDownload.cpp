#include "Platform/Updates/PackageDownload.h"

#include "Platform/Foundation/Text.h"
#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Host.h"
#include "Platform/Updates/UpdateError.h"

namespace platform {
namespace {

constexpr std::size_t longestFileName = 120;
constexpr const char* nameIfNone = "update";

int hexDigit(char character) {
    const auto place = std::string_view("0123456789abcdef").find(static_cast<char>(character | 0x20));
    return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

std::string percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isEscape = text[at] == '%' && at + 2 < text.size() && hexDigit(text[at + 1]) >= 0
                              && hexDigit(text[at + 2]) >= 0;
        result +=
            isEscape ? static_cast<char>(hexDigit(text[at + 1]) * 16 + hexDigit(text[at + 2])) : text[at];
        at += isEscape ? 2 : 0;
    }
    return result;
}

// Says how much is there, but not more often than it can be seen.
class Progress {
public:
    Progress(std::size_t expected, std::function<void(double)> receiver)
        : total(expected), onProgress(std::move(receiver)) {}

    void report(std::size_t received) {
        const std::size_t percent = received * 100 / total;
        if (percent == reported)
            return;
        reported = percent;
        Host::current().mainRunLoop().post(
            [report = onProgress, fraction = static_cast<double>(percent) / 100] { report(fraction); });
    }

private:
    const std::size_t total;
    const std::function<void(double)> onProgress;
    std::size_t reported = 0;
};

Task<void> receive(AppcastItem item, std::shared_ptr<HTTPSession> session, std::shared_ptr<IncomingFile> file,
                   std::function<void(double)> onProgress) {
    HTTPRequest request;
    request.url = item.fileURL;
    request.maximumBodyLength = item.contentLength;
    auto answer = co_await session->bytes(std::move(request));
    if (answer.response.status != 200)
        throw UpdateError("updates.error.status", std::to_string(answer.response.status.value_or(0)));
    Progress progress(item.contentLength, std::move(onProgress));
    std::size_t received = 0;
    while (auto piece = co_await answer.nextPiece()) {
        co_await checkCancellation();
        received += piece->size();
        file->append(*piece);
        progress.report(received);
    }
    if (received != item.contentLength)
        throw UpdateError("updates.error.package_length");
}

Task<bool> isGenuine(AppcastItem item, PublicKey key, std::shared_ptr<IncomingFile> file,
                     Executor* executor) {
    co_await resumeOn(*executor);
    co_return key.verifies(file->contents(), item.signature);
}

} // namespace

std::string packageFileName(const AppcastItem& item) {
    std::string_view url = item.fileURL;
    url = url.substr(0, url.find_first_of("?#"));
    const std::string decoded = percentDecoded(url.substr(url.rfind('/') + 1));
    std::string name;
    for (const char character : text::repaired(decoded)) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isAllowed = byte >= 0x20 && byte != 0x7F && character != '/' && character != '\\';
        // A file that begins with a dot would not be seen.
        if (isAllowed && !(name.empty() && character == '.'))
            name += character;
    }
    name = text::prefix(name, longestFileName);
    while (name.size() > longestFileName)
        name = text::prefix(name, text::characterCount(name) - 1);
    return name.empty() ? nameIfNone : name;
}

Task<void> downloadPackage(AppcastItem item, PublicKey key, std::shared_ptr<HTTPSession> session,
                           std::shared_ptr<IncomingFile> file, std::function<void(double)> onProgress) {
    co_await resumeOn(Host::current().backgroundExecutor());
    co_await receive(item, session, file, std::move(onProgress));
    // A large package takes a second or two to check; what else is done in the background does not wait.
    WorkerThread checker;
    const bool genuine = co_await isGenuine(item, key, file, &checker.runLoop());
    if (!genuine)
        throw UpdateError("updates.error.package_signature");
}

} // namespace platform
