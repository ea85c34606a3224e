#include "Service/HTTPS/Certificate.h"

#include "Platform/Foundation/FileManager.h"
#include "Service/HTTPS/SelfSigned.h"
#include "Service/Support/Handles.h"
#include "Service/Support/PrivateFile.h"

#include <cerrno>
#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

namespace files = platform::files;
using WallClock = std::chrono::system_clock;

// Before its end a certificate made here gets a successor beside it in its file, for those who trust it to
// copy, and the successor takes its place when so much is left.
constexpr std::chrono::days renewal{30};
constexpr std::chrono::days succession{1};

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

// None at the end, which the library takes for an error that must not be the next operation's.
X509Certificate nextCertificate(BIO& source) {
    X509Certificate certificate(PEM_read_bio_X509(&source, nullptr, nullptr, nullptr));
    ERR_clear_error();
    return certificate;
}

// That of the certificate; the file of one made here may hold the keys of two. None if there is none, or no
// certificate.
PrivateKey keyIn(const std::string& text, const X509Certificate& certificate) {
    // Keeps the library from asking for a passphrase at the terminal.
    static char none[] = "";
    const Bio source = reading(text);
    while (EVP_PKEY* read = PEM_read_bio_PrivateKey(source.get(), nullptr, nullptr, none)) {
        PrivateKey key(read);
        if (certificate && X509_check_private_key(certificate.get(), key.get()) == 1)
            return key;
    }
    ERR_clear_error();
    return nullptr;
}

bool endsBefore(const X509& certificate, WallClock::time_point moment) {
    std::time_t time = WallClock::to_time_t(moment);
    return X509_cmp_time(X509_get0_notAfter(&certificate), &time) <= 0;
}

// What stands in the two files.
struct Found {
    explicit Found(const CertificateFiles& pair)
        : certificateText(contents(pair.certificate)),
          keyText(contents(pair.key)),
          source(reading(certificateText)),
          certificate(nextCertificate(*source)),
          successor(nextCertificate(*source)),
          key(keyIn(keyText, certificate)),
          successorsKey(keyIn(keyText, successor)) {}

    bool isMissing() const { return certificateText.empty() && keyText.empty(); }
    bool isOurs() const { return certificate && isSelfSigned(*certificate); }
    bool isPair() const { return key != nullptr; }
    bool hasSuccessor() const { return successorsKey != nullptr; }
    bool lasts(WallClock::time_point now) const {
        return !endsBefore(*certificate, !isOurs() ? now : now + (hasSuccessor() ? succession : renewal));
    }

    const std::string certificateText;
    const std::string keyText;
    const Bio source;
    const X509Certificate certificate;
    const X509Certificate successor;
    const PrivateKey key;
    const PrivateKey successorsKey;
};

// Held while a pair is made, so that copies of the service that start together agree on one.
class FolderLock {
public:
    FolderLock(const std::filesystem::path& folder, std::chrono::milliseconds patience)
        : directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (!directory.isOpen())
            throw std::system_error(errno, std::generic_category(),
                                    "Cannot open the folder " + folder.string());
        const auto end = std::chrono::steady_clock::now() + patience;
        while (::flock(directory.number(), LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= end)
                throw std::runtime_error("Another program keeps the folder " + folder.string()
                                         + " locked, where a certificate is to be made.");
            std::this_thread::sleep_for(20ms);
        }
    }

private:
    const Descriptor directory;
};

[[noreturn]] void refuseForeign(const Found& found, const CertificateFiles& pair) {
    throw std::runtime_error(found.isPair()
                                 ? "The certificate in " + pair.certificate.string() + " has expired."
                                 : "There is no certificate with its key in " + pair.certificate.string()
                                       + " and " + pair.key.string() + ".");
}

void writePair(const CertificateFiles& pair, const std::vector<std::string>& names,
               WallClock::time_point now) {
    // The certificate first: a key alone could be anyone's, and would not be written over.
    const auto fresh = makeSelfSigned(now, names);
    files::writeAtomically(pair.certificate, fresh.certificate);
    files::writeAtomically(pair.key, fresh.key);
}

// Takes a pair made here that does not last to one that does. Its key is in its file at every moment.
void renewPair(const CertificateFiles& pair, const std::vector<std::string>& names,
               WallClock::time_point now) {
    if (const Found found(pair); !found.hasSuccessor()) {
        const auto fresh = makeSelfSigned(now, names);
        files::writeAtomically(pair.key, found.keyText + fresh.key);
        files::writeAtomically(pair.certificate, found.certificateText + fresh.certificate);
    }
    if (const Found found(pair); !found.lasts(now)) {
        files::writeAtomically(pair.certificate, pem(*found.successor));
        files::writeAtomically(pair.key, pem(*found.successorsKey));
    }
}

// A key made here is made private again; others are their owners' to see to.
void keepPrivate(const Found& found, const CertificateFiles& pair) {
    if (found.isOurs() && !exposure(pair.key).empty())
        ::chmod(pair.key.c_str(), S_IRUSR | S_IWUSR);
    if (const std::string exposed = exposure(pair.key); !exposed.empty())
        throw std::runtime_error("The certificate’s key is in " + pair.key.string() + ", " + exposed);
}

} // namespace

std::filesystem::path keyOf(std::filesystem::path certificate) {
    return certificate.replace_extension(".key");
}

CertificateFiles ensureCertificate(const std::filesystem::path& path, const std::vector<std::string>& names,
                                   WallClock::time_point now) {
    CertificateFiles pair{.certificate = std::filesystem::absolute(path), .key = {}};
    pair.key = keyOf(pair.certificate);
    if (pair.key == pair.certificate)
        throw std::runtime_error("The certificate cannot stand in " + path.string()
                                 + ": that is the name for its key.");
    const auto folder = pair.certificate.parent_path();
    files::createPrivateDirectory(folder);
    const auto isGood = [&](const Found& found) {
        return found.isPair() && found.lasts(now) && (!found.isOurs() || isFor(*found.certificate, names));
    };
    if (!isGood(Found(pair))) {
        const FolderLock lock(folder, 5s);
        if (const Found found(pair); !isGood(found)) {
            if (!found.isMissing() && !found.isOurs())
                refuseForeign(found, pair);
            if (found.isPair() && isFor(*found.certificate, names))
                renewPair(pair, names, now);
            else
                writePair(pair, names, now);
        }
    }
    keepPrivate(Found(pair), pair);
    return pair;
}

void renewCertificate(const CertificateFiles& pair, const std::vector<std::string>& names,
                      WallClock::time_point now) {
    const Found found(pair);
    if (found.isPair() && found.lasts(now)) {
        keepPrivate(found, pair);
        return;
    }
    if (!found.isPair() || !found.isOurs())
        refuseForeign(found, pair);
    const FolderLock lock(pair.certificate.parent_path(), 0s);
    if (const Found again(pair); again.isPair() && again.isOurs() && !again.lasts(now))
        renewPair(pair, names, now);
}

PrivateKey readKey(const CertificateFiles& pair) {
    const std::string certificate = contents(pair.certificate);
    return keyIn(contents(pair.key), nextCertificate(*reading(certificate)));
}

} // namespace lumarin::service
