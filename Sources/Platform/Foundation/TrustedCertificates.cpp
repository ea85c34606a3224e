#include "Platform/Foundation/TrustedCertificates.h"

#include "Platform/Foundation/FileManager.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>

namespace platform {
namespace {

// A chain that is signed with another key than the authority's leaves the arithmetic's errors behind, and
// libcurl would report those and not that the certificate is refused.
int verify(X509_STORE_CTX* chain, void*) {
    const int verdict = X509_verify_cert(chain);
    ERR_clear_error();
    return verdict;
}

} // namespace

TrustedCertificates::TrustedCertificates(const std::filesystem::path& pemFile) {
    const std::string pem = files::contents(pemFile).value_or("");
    const std::unique_ptr<BIO, decltype(&BIO_free)> source(
        BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), &BIO_free);
    while (X509* certificate = PEM_read_bio_X509(source.get(), nullptr, nullptr, nullptr))
        certificates.emplace_back(certificate);
    // The end of the file counts as an error, and would be taken for one of the thread's next operation.
    ERR_clear_error();
}

void TrustedCertificates::addTo(ssl_ctx_st* context) const {
    for (const auto& certificate : certificates)
        X509_STORE_add_cert(SSL_CTX_get_cert_store(context), certificate.get());
    ERR_clear_error();
    SSL_CTX_set_cert_verify_callback(context, &verify, nullptr);
}

void TrustedCertificates::Free::operator()(x509_st* certificate) const {
    X509_free(certificate);
}

} // namespace platform
