#include "Support/Certificates.h"

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

void addExtension(X509* certificate, int kind, const std::string& value) {
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str()), &X509_EXTENSION_free);
    if (!extension || X509_add_ext(certificate, extension.get(), -1) != 1)
        throw std::runtime_error("No certificate extension " + value);
}

Identity makeUnsigned(const std::string& name, long serial) {
    Identity identity{std::unique_ptr<EVP_PKEY, Identity::Free>(EVP_EC_gen("P-256")),
                      std::unique_ptr<X509, Identity::Free>(X509_new())};
    X509* certificate = identity.certificate.get();
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
    X509_set_pubkey(certificate, identity.key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    return identity;
}

void sign(X509* certificate, const Identity& issuer) {
    X509_set_issuer_name(certificate, X509_get_subject_name(issuer.certificate.get()));
    if (X509_sign(certificate, issuer.key.get(), EVP_sha256()) == 0)
        throw std::runtime_error("The certificate could not be signed");
}

} // namespace

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

TestAuthority::TestAuthority() : self(makeUnsigned("Test Authority", 1)) {
    addExtension(self.certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    addExtension(self.certificate.get(), NID_key_usage, "critical,keyCertSign");
    sign(self.certificate.get(), self);
}

Identity TestAuthority::issue(const std::string& names) const {
    Identity identity = makeUnsigned("Test Server", 2);
    addExtension(identity.certificate.get(), NID_subject_alt_name, names);
    sign(identity.certificate.get(), self);
    return identity;
}

} // namespace tests
