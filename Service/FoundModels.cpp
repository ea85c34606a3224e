#include "Service/FoundModels.h"

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr auto timeBetweenLooks = 5s;

} // namespace

FoundModels::FoundModels(UpstreamConfiguration how, const Log& events, std::span<const std::uint16_t> ports)
    : configuration(std::move(how)), log(events), where(ports) {}

asio::awaitable<void> FoundModels::look() {
    const auto model = co_await findLocalModel(configuration.model, where);
    if (model == found)
        co_return;
    found = model;
    if (!model) {
        current = &gloss;
        log.write("model gone");
        co_return;
    }
    auto& upstream = known[model->url + " " + model->name]; // Translations may still be asking an old one.
    if (!upstream) {
        UpstreamConfiguration chosen = configuration;
        chosen.url = model->url;
        chosen.model = model->name;
        upstream = std::make_unique<Upstreams>(std::vector{Upstreams::Choice{std::move(chosen)}});
    }
    current = upstream.get();
    log.write("model found",
              {{"upstream", model->url},
               {"model", model->name},
               {"hint", "Choose another by --upstream URL and --model NAME, or --upstream gloss "
                        "for the built-in gloss."}});
}

asio::awaitable<void> FoundModels::keepLooking() {
    while (true) {
        co_await pause(timeBetweenLooks);
        const auto health = current->health();
        if (health.empty() || !health.front().isWell)
            co_await look();
    }
}

} // namespace lumarin::service
