#pragma once

#include "Service/Engine/Refusal.h"
#include "Service/Upstream/UpstreamError.h"

#include <chrono>
#include <curl/curl.h>
#include <string>
#include <string_view>

// What a person is told, and the log, when the model server gives no translation.
namespace lumarin::service {

inline constexpr int badGateway = 502;

// The transfer failed with `code`, which is `sentence` in words.
Refusal failedTransfer(CURLcode code, const std::string& sentence);

// The upstream answered with `status` and `body`. `retryAfter` is zero if it did not say.
Refusal refusedByUpstream(int status, const std::string& model, std::string_view body,
                          std::chrono::seconds retryAfter);

// Said in the place of a translation, or in the middle of one.
Refusal failedUpstream(const UpstreamError& error);

Refusal senselessUpstream();
Refusal silentUpstream(std::chrono::seconds silence);
Refusal slowUpstream();
Refusal endlessUpstream();

} // namespace lumarin::service
