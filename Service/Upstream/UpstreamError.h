#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace lumarin::service {

// What a model server says has gone wrong, as far as it takes one of the usual forms:
// {"error": {"message": ..., "code": ...}}, {"error": ...}, {"message": ...}, {"detail": ...},
// {"detail": [{"msg": ...}]}.
struct UpstreamError {
    std::string message; // Not too long to be quoted.
    std::string code;

    static UpstreamError in(const nlohmann::json& said);
    // Of a text that may be no JSON.
    static UpstreamError in(std::string_view said);

    // Whether the model asked for is not one of the server's.
    bool isAboutUnknownModel(int status) const;
};

// Whether an object that came in the place of an answer is an error.
bool isError(const nlohmann::json& said);

} // namespace lumarin::service
