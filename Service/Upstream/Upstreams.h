#pragma once

#include "Service/Upstream/Upstream.h"
#include "Service/Upstream/UpstreamHealth.h"

#include <list>
#include <vector>

namespace lumarin::service {

// The engine that asks one of several model servers, and the next one when that does not begin. Those with a
// weight share the translations by it; the others are their reserve, in their order.
class Upstreams final : public TranslationEngine {
public:
    struct Choice {
        UpstreamConfiguration configuration;
        int weight = 0;
    };

    // Of at least one.
    explicit Upstreams(std::vector<Choice> choices);

    std::unique_ptr<Translation> begin(const TranslationRequest& request,
                                       Clock::time_point deadline) const override;
    // Of the one that is asked next.
    std::string name() const override;
    std::vector<Health> health() const override;

    struct Server {
        explicit Server(Choice choice) : upstream(std::move(choice.configuration)), weight(choice.weight) {}

        const Upstream upstream;
        const int weight;
        int credit = 0; // Of its share.
        UpstreamHealth health;
    };

private:
    std::vector<Server*> inTurn(Clock::time_point now) const;

    mutable std::list<Server> servers;
};

} // namespace lumarin::service
