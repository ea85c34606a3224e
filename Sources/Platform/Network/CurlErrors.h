#pragma once

#include <curl/curl.h>

#include <string>

namespace platform {

// Why a transfer with `host` failed, as a sentence a person can read. `detail` is libcurl's own text for it,
// used where there is no better one.
std::string curlErrorSentence(CURLcode code, CURL* transfer, const std::string& host, const char* detail);

} // namespace platform
