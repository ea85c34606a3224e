#pragma once

#include <stdexcept>
#include <string>

namespace lumarin::service {

// An answer other than success: an HTTP status and one plain sentence for the person waiting. Clients show
// the sentence's first hundred characters only.
class Refusal : public std::runtime_error {
public:
    Refusal(int httpStatus, const std::string& sentence) : std::runtime_error(sentence), status(httpStatus) {}

    int status;
};

} // namespace lumarin::service
