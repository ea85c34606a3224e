#pragma once

#include "Platform/Foundation/Descriptor.h"
#include "Platform/Foundation/Release.h"

#include <memory>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace lumarin::service {

using platform::Release;
using platform::files::Descriptor;

using Bio = std::unique_ptr<BIO, Release<BIO_free_all>>;
using PrivateKey = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using X509Certificate = std::unique_ptr<X509, Release<X509_free>>;
using X509Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using TLSContext = std::unique_ptr<SSL_CTX, Release<SSL_CTX_free>>;
using TLSSession = std::unique_ptr<SSL, Release<SSL_free>>;

} // namespace lumarin::service
