#pragma once

#include "Platform/Foundation/Text.h"

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace platform {

// A transfer that failed; says why in an English sentence a person can read. The table of strings "Network"
// has the sentences of other languages, under the English ones.
class HTTPError : public std::runtime_error {
public:
    // `key` is the sentence, with "%@" for each of the two others.
    explicit HTTPError(std::string key, std::string subject = {}, std::string detail = {})
        : runtime_error(text::format(key, {subject, detail})),
          key_(std::move(key)),
          arguments{std::move(subject), std::move(detail)} {}

    const std::string& key() const { return key_; }

    // The sentence in the language of the one given.
    std::string description(const std::string& sentence) const {
        return text::format(sentence, {arguments[0], arguments[1]});
    }

private:
    std::string key_;
    std::array<std::string, 2> arguments;
};

} // namespace platform
