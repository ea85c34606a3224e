#pragma once

#include "Service/Gloss/Gloss.h"
#include "Service/Support/Log.h"
#include "Service/Upstream/LocalModels.h"
#include "Service/Upstream/Upstreams.h"

#include <map>
#include <memory>
#include <string>

namespace lumarin::service {

// The engine of a service that nobody has told whom to ask: a model of this computer, as soon as one is
// found, and the gloss until then. For one thread.
class FoundModels final : public TranslationEngine {
public:
    // Of `how` all but the address counts; with a model there only that one is taken. The log outlives the
    // engine, as do the ports.
    FoundModels(UpstreamConfiguration how, const Log& events,
                std::span<const std::uint16_t> ports = usualPorts());

    // Looks once, for half a second at the longest.
    asio::awaitable<void> look();
    // Looks again for a server that starts later, as at login, and for another one when that fails.
    asio::awaitable<void> keepLooking();

    std::unique_ptr<Translation> begin(const TranslationRequest& request,
                                       Clock::time_point deadline) const override {
        return current->begin(request, deadline);
    }
    std::string name() const override { return current->name(); }
    std::vector<Health> health() const override { return current->health(); }

    // The model that is asked; none while it is the gloss.
    const std::optional<LocalModel>& model() const { return found; }

private:
    const UpstreamConfiguration configuration;
    const Log& log;
    const std::span<const std::uint16_t> where;
    const Gloss gloss;
    std::map<std::string, std::unique_ptr<const Upstreams>> known; // By address and model.
    std::optional<LocalModel> found;
    const TranslationEngine* current = &gloss;
};

} // namespace lumarin::service
