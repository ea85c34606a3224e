#pragma once

#include "Platform/Foundation/Release.h"

#include <curl/curl.h>

#include <memory>

namespace platform {

using CurlEasy = std::unique_ptr<CURL, Release<curl_easy_cleanup>>;
using CurlMulti = std::unique_ptr<CURLM, Release<curl_multi_cleanup>>;
using CurlList = std::unique_ptr<curl_slist, Release<curl_slist_free_all>>;

} // namespace platform
