#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace platform {

// Why nothing is offered or kept: the key of a sentence among the update texts, and what is filled into it.
class UpdateError : public std::runtime_error {
public:
    explicit UpdateError(const std::string& sentenceKey, std::string filledIn = {})
        : std::runtime_error(sentenceKey), key(sentenceKey), argument(std::move(filledIn)) {}

    std::string key;
    std::string argument;
};

// All is well, and there is nothing to offer. Two texts, "<key>.title" and "<key>.body".
class NoUpdate : public UpdateError {
    using UpdateError::UpdateError;
};

} // namespace platform
