#include "Service/HTTPS/CertificateKeeper.h"

#include "Platform/Foundation/Dates.h"
#include "Platform/Foundation/FileManager.h"

#include <ctime>
#include <openssl/err.h>
#include <stdexcept>

namespace lumarin::service {
namespace {

TLSContext makeContext(const CertificateFiles& files) {
    const PrivateKey key = readKey(files);
    TLSContext context(SSL_CTX_new(TLS_server_method()));
    if (!context || SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) != 1
        || SSL_CTX_use_certificate_chain_file(context.get(), files.certificate.c_str()) != 1
        || SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1) {
        ERR_clear_error();
        throw std::runtime_error("The certificate in " + files.certificate.string() + " cannot be used.");
    }
    // Sessions are resumed by tickets, which the clients keep; idle connections give their buffers back.
    SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
    SSL_CTX_set_mode(context.get(), SSL_MODE_RELEASE_BUFFERS);
    return context;
}

CertificateKeeper::Clock::time_point endOf(const SSL_CTX& context) {
    std::tm end{};
    ASN1_TIME_to_tm(X509_get0_notAfter(SSL_CTX_get0_certificate(&context)), &end);
    return CertificateKeeper::Clock::from_time_t(timegm(&end));
}

} // namespace

CertificateKeeper::CertificateKeeper(const std::filesystem::path& file, std::vector<std::string> hosts,
                                     const Log& log)
    : names(std::move(hosts)), events(log), files(ensureCertificate(file, names)) {
    load();
}

void CertificateKeeper::renew(Clock::time_point now) {
    try {
        renewCertificate(files, names, now);
        load();
        lastFailure.clear();
    } catch (const std::exception& error) {
        if (lastFailure != error.what())
            events.write("certificate not renewed", {{"reason", error.what()}});
        lastFailure = error.what();
    }
}

void CertificateKeeper::load() {
    const std::string text = platform::files::contents(files.certificate).value_or("");
    if (text == loaded)
        return;
    current = makeContext(files);
    expires = endOf(*current);
    loaded = text;
    events.write("certificate loaded",
                 {{"file", files.certificate.string()}, {"expires", platform::iso8601(expires)}});
}

} // namespace lumarin::service
