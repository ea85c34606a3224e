#include "Platform/Network/TrustedCertificates.h"

#include "Platform/Foundation/FileManager.h"

#include <memory>
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

TrustedCertificates::TrustedCertificates(std::filesystem::path pemFile) : file(std::move(pemFile)) {}

void TrustedCertificates::addTo(ssl_ctx_st* context) const {
    const std::string pem = files::contents(file).value_or("");
    const std::unique_ptr<BIO, decltype(&BIO_free)> source(
        BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), &BIO_free);
    while (X509* read = PEM_read_bio_X509(source.get(), nullptr, nullptr, nullptr)) {
        const std::unique_ptr<X509, decltype(&X509_free)> certificate(read, &X509_free);
        X509_STORE_add_cert(SSL_CTX_get_cert_store(context), certificate.get());
    }
    // The end of the file counts as an error, and would be taken for one of the thread's next operation.
    ERR_clear_error();
    SSL_CTX_set_cert_verify_callback(context, &verify, nullptr);
}

} // namespace platform
