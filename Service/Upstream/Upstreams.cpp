#include "Service/Upstream/Upstreams.h"

#include "Service/Engine/Refusal.h"

#include <algorithm>
#include <utility>

namespace lumarin::service {
namespace {

// Asks one server after another until a translation has begun; what has begun is never asked for twice.
class Attempts final : public Translation {
public:
    Attempts(TranslationRequest wanted, Clock::time_point latest, std::vector<Upstreams::Server*> inTurn)
        : request(std::move(wanted)), deadline(latest), servers(std::move(inTurn)) {
        ask();
    }

    Progress next() override {
        while (true) {
            try {
                Progress progress = current->next();
                if (progress.kind != Progress::Kind::nothingYet && !std::exchange(hasBegun, true))
                    servers.front()->health.succeed();
                return progress;
            } catch (const Refusal& refusal) {
                if (!canGoOn(refusal))
                    throw;
            }
            current.reset();
            servers.erase(servers.begin());
            ask();
        }
    }

    boost::asio::awaitable<void> wait(Clock::time_point moment) override { return current->wait(moment); }
    boost::asio::awaitable<void> finish() override { return current->finish(); }

private:
    void ask() {
        servers.front()->health.ask(Clock::now());
        current = servers.front()->upstream.begin(request, deadline);
    }

    bool canGoOn(const Refusal& refusal) {
        const auto now = Clock::now();
        if (hasBegun || now >= deadline)
            return false;
        // Of a text that it does not take, the server is not to blame.
        if (refusal.cause != "refused request" && refusal.cause != "broken off")
            servers.front()->health.fail(now, refusal.retryAfter);
        return servers.size() > 1;
    }

    const TranslationRequest request;
    const Clock::time_point deadline;
    std::vector<Upstreams::Server*> servers; // The first is being asked.
    std::unique_ptr<Translation> current;
    bool hasBegun = false;
};

} // namespace

Upstreams::Upstreams(std::vector<Choice> choices) {
    for (Choice& choice : choices)
        servers.emplace_back(std::move(choice));
}

std::unique_ptr<Translation> Upstreams::begin(const TranslationRequest& request,
                                              Clock::time_point deadline) const {
    auto inLine = inTurn(Clock::now());
    // Each share is paid from what all of those have got that could have been asked.
    int all = 0;
    for (Server* server : inLine) {
        server->credit += server->weight;
        all += server->weight;
    }
    inLine.front()->credit -= all;
    return std::make_unique<Attempts>(request, deadline, std::move(inLine));
}

std::string Upstreams::name() const {
    return inTurn(Clock::now()).front()->upstream.name();
}

std::vector<TranslationEngine::Health> Upstreams::health() const {
    std::vector<Health> all;
    for (const Server& server : servers)
        all.push_back({server.health.isWell(), server.health.translations, server.health.failures});
    return all;
}

// Those that may be asked now, or all rather than nobody: who shares, the one with the most credit first, and
// the reserve.
std::vector<Upstreams::Server*> Upstreams::inTurn(Clock::time_point now) const {
    std::vector<Server*> result;
    for (Server& server : servers)
        if (server.health.mayBeAsked(now))
            result.push_back(&server);
    if (result.empty())
        for (Server& server : servers)
            result.push_back(&server);
    std::ranges::stable_sort(result, [](const Server* a, const Server* b) {
        const bool bothShare = a->weight > 0 && b->weight > 0;
        return bothShare ? a->credit + a->weight > b->credit + b->weight : a->weight > 0 && b->weight == 0;
    });
    return result;
}

} // namespace lumarin::service
