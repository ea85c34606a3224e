#pragma once

#include "Platform/Foundation/HTTPError.h"

#include <curl/curl.h>

namespace platform {

// Why a transfer with `host` failed. `detail` is libcurl's own text for it, used where there is no better
// one.
HTTPError curlError(CURLcode code, CURL* transfer, const std::string& host, const char* detail);

} // namespace platform
