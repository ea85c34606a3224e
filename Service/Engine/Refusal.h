#pragma once

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>

namespace lumarin::service {

// An answer other than success: an HTTP status and one plain sentence for the person waiting. Clients show
// the sentence's first hundred characters only.
class Refusal : public std::runtime_error {
public:
    // `why` is a word for the log and the counters; requests at fault themselves need none.
    Refusal(int httpStatus, const std::string& sentence, std::string why = "")
        : std::runtime_error(sentence), status(httpStatus), cause(std::move(why)) {}

    int status;
    std::string cause;
    // Said to the client after the sentence, but not logged: it may quote the text.
    std::string quotation;
    std::optional<std::chrono::seconds> retryAfter;
};

} // namespace lumarin::service
