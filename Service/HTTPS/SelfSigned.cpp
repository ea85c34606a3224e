#include "Service/HTTPS/SelfSigned.h"

#include "Service/Support/Handles.h"

#include <algorithm>
#include <array>
#include <openssl/bn.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace lumarin::service {
namespace {

constexpr const char* organisation = "lumarin-service";
constexpr std::chrono::hours lifetime = std::chrono::days(3650);
constexpr std::chrono::hours clockTolerance{24};
constexpr int serialBits = 127;

void check(bool succeeded) {
    if (!succeeded)
        throw std::runtime_error("The certificate could not be made.");
}

void setName(X509& certificate, const char* field, const char* value) {
    check(X509_NAME_add_entry_by_txt(X509_get_subject_name(&certificate), field, MBSTRING_UTF8,
                                     reinterpret_cast<const unsigned char*>(value), -1, -1, 0)
          == 1);
}

void addExtension(X509& certificate, int identifier, const char* value) {
    X509V3_CTX context{};
    X509V3_set_ctx(&context, &certificate, &certificate, nullptr, nullptr, 0);
    const X509Extension extension(X509V3_EXT_conf_nid(nullptr, &context, identifier, value));
    check(extension && X509_add_ext(&certificate, extension.get(), -1) == 1);
}

void setSerial(X509& certificate) {
    const std::unique_ptr<BIGNUM, Release<BN_free>> serial(BN_new());
    check(serial && BN_rand(serial.get(), serialBits, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1
          && BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(&certificate)));
}

bool isAddress(const std::string& name) {
    const std::unique_ptr<ASN1_OCTET_STRING, Release<ASN1_OCTET_STRING_free>> bytes(
        a2i_IPADDRESS(name.c_str()));
    return bytes != nullptr;
}

std::string alternativeNames(const std::vector<std::string>& names) {
    std::string all = "DNS:localhost,IP:127.0.0.1,IP:::1";
    for (const std::string& name : names)
        all += (isAddress(name) ? ",IP:" : ",DNS:") + name;
    return all;
}

template <typename Write>
std::string written(Write write) {
    const Bio bio(BIO_new(BIO_s_mem()));
    check(bio && write(bio.get()) == 1);
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    return {data, static_cast<std::size_t>(size)};
}

} // namespace

PemPair makeSelfSigned(std::chrono::system_clock::time_point now, const std::vector<std::string>& names) {
    using std::chrono::system_clock;
    const PrivateKey key(EVP_EC_gen("P-256"));
    const X509Certificate certificate(X509_new());
    check(key && certificate);

    check(X509_set_version(certificate.get(), X509_VERSION_3) == 1);
    setSerial(*certificate);
    check(ASN1_TIME_set(X509_getm_notBefore(certificate.get()), system_clock::to_time_t(now - clockTolerance))
          && ASN1_TIME_set(X509_getm_notAfter(certificate.get()), system_clock::to_time_t(now + lifetime)));
    setName(*certificate, "O", organisation);
    setName(*certificate, "CN", "localhost");
    check(X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get())) == 1
          && X509_set_pubkey(certificate.get(), key.get()) == 1);

    // Whoever trusts this certificate trusts this server only: it cannot vouch for another.
    addExtension(*certificate, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(*certificate, NID_key_usage, "critical,digitalSignature");
    addExtension(*certificate, NID_ext_key_usage, "serverAuth");
    addExtension(*certificate, NID_subject_key_identifier, "hash");
    addExtension(*certificate, NID_subject_alt_name, alternativeNames(names).c_str());
    check(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0);

    return {.certificate = pem(*certificate), .key = pem(*key)};
}

std::string pem(X509& certificate) {
    return written([&](BIO* bio) { return PEM_write_bio_X509(bio, &certificate); });
}

std::string pem(EVP_PKEY& key) {
    return written(
        [&](BIO* bio) { return PEM_write_bio_PrivateKey(bio, &key, nullptr, nullptr, 0, nullptr, nullptr); });
}

bool isFor(X509& certificate, const std::vector<std::string>& names) {
    return std::ranges::all_of(names, [&](const std::string& name) {
        return X509_check_host(&certificate, name.data(), name.size(), 0, nullptr) == 1
               || X509_check_ip_asc(&certificate, name.c_str(), 0) == 1;
    });
}

bool isSelfSigned(const X509& certificate) {
    std::array<char, 64> name{};
    X509_NAME_get_text_by_NID(X509_get_issuer_name(&certificate), NID_organizationName, name.data(),
                              static_cast<int>(name.size()));
    return std::string(name.data()) == organisation;
}

} // namespace lumarin::service
