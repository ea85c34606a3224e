#include "Support/Identity.h"

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace tests {
namespace {

using Memory = std::unique_ptr<BIO, decltype(&BIO_free)>;

std::string textOf(const Memory& memory) {
    char* bytes = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, static_cast<std::size_t>(length)};
}

} // namespace

Identity::Identity(const std::string& names) : key(EVP_EC_gen("P-256")), certificate(X509_new()) {
    X509* made = certificate.get();
    X509_set_version(made, X509_VERSION_3);
    X509_gmtime_adj(X509_getm_notBefore(made), -3600);
    X509_gmtime_adj(X509_getm_notAfter(made), 3600);
    X509_set_pubkey(made, key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(made), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>("Test Server"), -1, -1, 0);
    X509_set_issuer_name(made, X509_get_subject_name(made));
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, names.c_str()), &X509_EXTENSION_free);
    if (!extension || X509_add_ext(made, extension.get(), -1) != 1
        || X509_sign(made, key.get(), EVP_sha256()) == 0)
        throw std::runtime_error("No certificate for " + names);
}

std::string Identity::certificatePEM() const {
    const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
    PEM_write_bio_X509(memory.get(), certificate.get());
    return textOf(memory);
}

std::string Identity::keyPEM() const {
    const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
    PEM_write_bio_PrivateKey(memory.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    return textOf(memory);
}

} // namespace tests
