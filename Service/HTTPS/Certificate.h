#pragma once

#include "Service/Support/Handles.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace lumarin::service {

// Where a certificate and its private key stand, both in PEM form.
struct CertificateFiles {
    std::filesystem::path certificate;
    std::filesystem::path key;
};

// Where the key of a certificate stands: beside it under the same name ending in .key.
std::filesystem::path keyOf(std::filesystem::path certificate);

// Sees to it that a usable certificate stands in `path`, with its key beside it, private. A missing pair is
// made, for localhost, the loopback addresses and `names` (host names and addresses); one made here earlier
// is renewed when it is about to expire, and made again when it is broken or lacks a name. Files that were
// not made here are never written over. Throws std::runtime_error with one sentence when there is no usable
// pair in the end.
CertificateFiles
ensureCertificate(const std::filesystem::path& path, const std::vector<std::string>& names = {},
                  std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

// Renews a pair that was made here and is about to expire, and does nothing else: somebody may be just
// replacing the files. A month before the end the next certificate is added behind the one that is served, so
// that a copy of the file is good for both; on the last day it is all that is left. Never waits. Throws like
// ensureCertificate.
void renewCertificate(const CertificateFiles& pair, const std::vector<std::string>& names,
                      std::chrono::system_clock::time_point now);

// The key of the first certificate in its file; none if it is not there.
PrivateKey readKey(const CertificateFiles& pair);

} // namespace lumarin::service
