#pragma once

#include "Platform/Network/TrustedCertificates.h"
#include "Service/Engine/TranslationEngine.h"
#include "Service/Upstream/UpstreamConnections.h"

#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

namespace lumarin::service {

// What to ask, and how.
struct UpstreamConfiguration {
    std::string url;                                      // The base address, as in http://127.0.0.1:8000/v1.
    std::string model;                                    // Empty where the server needs no name.
    std::string key;                                      // Empty where it needs none.
    nlohmann::json parameters = nlohmann::json::object(); // More members of each request.
    std::chrono::seconds silence{8};                      // The longest time without a byte.
    std::shared_ptr<const platform::TrustedCertificates> authorities; // Besides the system's; may be null.
};

// The engine that asks a model server by the chat-completions protocol. Each translation is driven by the
// coroutine that asks for its pieces, so nothing stands between their arrival and their departure, and a
// client that reads slowly slows its own upstream down.
class Upstream final : public TranslationEngine {
public:
    explicit Upstream(UpstreamConfiguration chosen) : configuration(std::move(chosen)) {}

    std::unique_ptr<Translation> begin(const TranslationRequest& request,
                                       Clock::time_point deadline) const override;
    std::string name() const override {
        return configuration.model.empty() ? "model server" : configuration.model;
    }

private:
    std::string body(const TranslationRequest& request) const;

    const UpstreamConfiguration configuration;
    mutable UpstreamConnections connections;
};

} // namespace lumarin::service
