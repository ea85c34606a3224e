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
    if (!model || model == found)
        co_return;
    found = model;
    auto& upstream = known[model->url + " " + model->name]; // Translations may still be asking an old one.
    if (!upstream) {
        UpstreamConfiguration chosen = configuration;
        chosen.url = model->url;
        chosen.model = model->name;
        upstream = std::make_unique<Upstream>(std::move(chosen));
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
        if (!found)
            co_await look();
        co_await pause(timeBetweenLooks);
    }
}

} // namespace lumarin::service
