#include "Service/Certificate.h"

#include "Platform/Foundation/FileManager.h"
#include "Service/Handles.h"
#include "Service/SelfSigned.h"

#include <cerrno>
#include <fcntl.h>
#include <openssl/pem.h>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <system_error>

namespace lumarin::service {
namespace {

namespace files = platform::files;
using Clock = std::chrono::system_clock;

// Long enough to tell those who trust it of the new one.
constexpr std::chrono::days renewal{30};

// Empty when there is no such file.
std::string contents(const std::filesystem::path& path) {
    auto result = files::read(path);
    if (result.status == files::ReadStatus::unreadable)
        throw std::runtime_error("Cannot read " + path.string() + ".");
    return result.bytes;
}

Bio reading(const std::string& text) {
    return Bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

X509Certificate parseCertificate(const std::string& text) {
    return X509Certificate(PEM_read_bio_X509(reading(text).get(), nullptr, nullptr, nullptr));
}

PrivateKey parseKey(const std::string& text) {
    // Keeps the library from asking for a passphrase at the terminal.
    static char none[] = "";
    return PrivateKey(PEM_read_bio_PrivateKey(reading(text).get(), nullptr, nullptr, none));
}

bool endsBefore(const X509& certificate, Clock::time_point moment) {
    std::time_t time = Clock::to_time_t(moment);
    return X509_cmp_time(X509_get0_notAfter(&certificate), &time) <= 0;
}

} // namespace

CertificateFiles ensureCertificate(const std::filesystem::path& path, const std::vector<std::string>& names,
                                   Clock::time_point now) {
    CertificateFiles pair{.certificate = std::filesystem::absolute(path), .key = {}};
    pair.key = std::filesystem::path(pair.certificate).replace_extension(".key");
    if (pair.key == pair.certificate)
        throw std::runtime_error("The certificate cannot stand in " + path.string()
                                 + ": that is the name for its key.");
    auto folder = pair.certificate.parent_path();
    files::createPrivateDirectory(folder);
    // Copies of the service started together agree on one pair.
    Descriptor lock(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (lock.number() < 0 || ::flock(lock.number(), LOCK_EX) != 0)
        throw std::system_error(errno, std::generic_category(), "Cannot open the folder " + folder.string());

    auto certificateText = contents(pair.certificate);
    auto keyText = contents(pair.key);
    auto certificate = parseCertificate(certificateText);
    auto key = parseKey(keyText);
    bool isMissing = certificateText.empty() && keyText.empty();
    bool isOurs = certificate && isSelfSigned(*certificate);
    bool matches = certificate && key && X509_check_private_key(certificate.get(), key.get()) == 1;
    bool isGood = matches && !endsBefore(*certificate, isOurs ? now + renewal : now);
    if (isGood && (!isOurs || isFor(*certificate, names)))
        return pair;
    if (!isMissing && !isOurs)
        throw std::runtime_error(matches
                                     ? "The certificate in " + pair.certificate.string() + " has expired."
                                     : "There is no certificate with its key in " + pair.certificate.string()
                                           + " and " + pair.key.string() + ".");
    // The certificate first: a key alone could be anyone's, and would not be written over.
    auto fresh = makeSelfSigned(now, names);
    files::writeAtomically(pair.certificate, fresh.certificate);
    files::writeAtomically(pair.key, fresh.key);
    return pair;
}

} // namespace lumarin::service
